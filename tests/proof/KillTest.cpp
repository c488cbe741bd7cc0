#include "tests/proof/ProofDevice.h"

namespace dubrix {

namespace {

namespace fs = std::filesystem;
using Step = ProcessGroup::Step;

const std::string large = "com.example.large", other = "com.example.other";

/// The program that does something on the device: duplicate, update, store settings, or what the
/// installer does by an option, with the source's second version or a version of another
/// application.
std::vector<std::string> programFor(const ProofDevice& device, const std::string& deed) {
    if (deed == "store")
        return device.storing(std::string(100'000, 't'));
    if (deed[0] != '-')
        return device.application({deed, "-y"});
    std::string about = large;
    const char version = deed.back();
    if (deed == "-f source")
        about = device.sourceArchive("2");
    else if (deed.starts_with("-f")) // enough to be unpacked by several threads
        about = device.application(large, {version},
                                   {{"sub/", "", S_IFDIR | 0555},
                                    {"large", std::string(1'200'000, version)},
                                    {"sub/larger", std::string(1'300'000, version)},
                                    {"link", "sub/larger", S_IFLNK | 0777}});
    return {"ipainstaller", "--root", device.root(), deed.substr(0, 2), about};
}

struct Case {
    std::string name;
    /// Every so manieth call is tried in the usual run.
    int stride;
    std::vector<std::string> before;
    std::string deed;

    void prepare(const ProofDevice& device) const {
        for (const std::string& each : before)
            ASSERT_EQ(device.run(programFor(device, each)).status, 0);
    }
    /// Whether it is to be asked for once more after a kill, and then comes to its end.
    bool isRepeated() const { return deed[0] != '-'; }
};

const Case cases[] = {{"duplicating", 19, {}, "duplicate"},
                      {"updating", 23, {"duplicate", "-f source"}, "update"},
                      {"installing", 4, {}, "-f 2"},
                      {"replacing", 4, {"-f 1"}, "-f 2"},
                      {"removing", 4, {"-f 1"}, "-u"},
                      {"removingForAWhile", 4, {"-f 1"}, "-U"},
                      {"puttingBack", 4, {"-f 1", "-U"}, "-r"},
                      {"storing", 1, {}, "store"}};

/// All that they change.
Contents stateOf(const ProofDevice& device) {
    Contents state = device.bundle(device.duplicate);
    state.merge(device.bundle(large));
    state["settings"] = contentsOf(device.settingsPath());
    return state;
}

/// The system calls that change files or processes, or wait for them: what lies between two of
/// them leaves nothing different behind.
std::vector<long> changes() {
    std::vector<long> calls = namingCalls;
    calls.insert(calls.end(),
                 {SYS_write, SYS_pwrite64, SYS_writev, SYS_copy_file_range, SYS_ftruncate,
                  SYS_fchmod, SYS_fchmodat, SYS_utimensat, SYS_clone, SYS_clone3, SYS_wait4});
#ifdef SYS_fork
    calls.insert(calls.end(), {SYS_fork, SYS_vfork, SYS_chmod});
#endif
    return calls;
}

std::optional<int> runStepwise(const ProofDevice& device, const std::vector<std::string>& words,
                               const std::function<void(const Step&)>& before) {
    const ProcessGroup group(words, device.searchPath(), device.folder() / "said",
                             ProcessGroup::Start::Stepwise);
    return group.stepThrough(changes(), before);
}

} // namespace

/// A case that once comes to its end, and then is killed at one point after the other.
class KillTest : public testing::TestWithParam<std::size_t> {
protected:
    void SetUp() override {
        const ProofDevice device;
        case_.prepare(device);
        before_ = stateOf(device);
        const auto status =
            runStepwise(device, programFor(device, case_.deed), [this](const Step& step) {
                if (step.program != "bash")
                    calls_[step.program] = step.count;
            });
        if (!status)
            GTEST_SKIP() << "no process may be traced here";
        EXPECT_EQ(*status, 0);
        after_ = stateOf(device);
        EXPECT_NE(before_, after_);
    }

    /// Kills the program at its so manieth call: the application or the installer alone, since each
    /// makes sure of its own work; any other command with its application, which does not ask what
    /// became of it. Meanwhile another application may be replaced again and again, until that is
    /// killed, too, at any moment.
    bool killAt(const std::string& program, int number, bool isUnderLoad) const {
        SCOPED_TRACE(case_.name + ": " + program + " killed at call " + std::to_string(number));
        const ProofDevice device;
        case_.prepare(device);
        EXPECT_TRUE(device.installer().install(device.application(other, "1")));
        const Contents source = device.bundle(device.source), beside = device.bundle(other);
        const std::vector<std::string> words = programFor(device, case_.deed);
        const bool alone = program == "dubrix-terminal" || program == "ipainstaller";
        bool killed = false;
        {
            const ProcessGroup load(
                {"sh", "-c", isUnderLoad ? "while ipainstaller --root $0 -f $1; do :; done" : "",
                 device.root(), device.folder() / (other + "-1.ipa")},
                device.searchPath(), "/dev/null");
            runStepwise(device, words, [&](const Step& step) {
                if (step.program != program || step.count != number)
                    return;
                if (!alone)
                    ::kill(::getsid(step.process), SIGKILL);
                ::kill(step.process, SIGKILL);
                killed = true;
            });
        }
        const Contents found = stateOf(device);
        EXPECT_TRUE(found == after_ || (killed && found == before_));

        // The next runs take away what was left, and only that. A duplicate is built again, or the
        // next one when this one was in place already.
        if (case_.isRepeated()) {
            EXPECT_EQ(device.run(words).status, 0);
            EXPECT_EQ(stateOf(device), after_);
            if (!fs::is_empty(device.staging())) {
                EXPECT_EQ(device.request(), device.success);
            }
            EXPECT_TRUE(fs::is_empty(device.staging()));
        }
        const Contents left = stateOf(device);
        EXPECT_TRUE(device.installer().install(device.application("com.example.next", "1")));
        EXPECT_EQ(device.leftovers(), 0);
        EXPECT_EQ(stateOf(device), left);
        const auto settings = fs::directory_iterator(device.settingsPath().parent_path());
        EXPECT_EQ(std::distance(settings, {}), 1);
        EXPECT_EQ(device.bundle(device.source), source);
        EXPECT_EQ(device.bundle(other), beside);
        return killed;
    }

    const Case& case_ = cases[GetParam()];
    /// How many calls each program makes.
    std::map<std::string, int> calls_;
    Contents before_, after_;
};

INSTANTIATE_TEST_SUITE_P(, KillTest, testing::Range(std::size_t{0}, std::size(cases)),
                         [](const auto& each) { return cases[each.param].name; });

/// With DUBRIX_EVERY_POINT set no call is left out, which takes minutes.
TEST_P(KillTest, LeavesTheOldOrTheNew) {
    const int stride = std::getenv("DUBRIX_EVERY_POINT") == nullptr ? case_.stride : 1;
    for (const auto& [program, calls] : calls_) {
        int kills = 0;
        for (int number = 1; number <= calls && !HasFailure(); number += stride)
            kills += killAt(program, number, number / stride % 2 == 0) ? 1 : 0;
        EXPECT_GT(kills * stride, calls / 2);
        std::printf("%s: %s killed at %d calls\n", case_.name.c_str(), program.c_str(), kills);
    }
}

} // namespace dubrix
