#include "tests/proof/ProofDevice.h"

#include <random>

namespace dubrix {

namespace {

namespace fs = std::filesystem;
using Step = ProcessGroup::Step;

const std::string large = "com.example.large", other = "com.example.other";

/// Enough to be unpacked by several threads.
fs::path archiveOf(const ProofDevice& device, const std::string& identifier, char version) {
    return device.DeviceFolder::application(identifier, {version},
                                            {{"sub/", "", S_IFDIR | 0555},
                                             {"large", std::string(1'200'000, version)},
                                             {"sub/larger", std::string(1'300'000, version)},
                                             {"link", "sub/larger", S_IFLNK | 0777}});
}

fs::path small(const ProofDevice& device, const std::string& identifier) {
    return device.DeviceFolder::application(identifier, "1", {{"a", "a"}});
}

std::vector<std::string> installer(const ProofDevice& device, const std::string& command,
                                   const std::string& argument) {
    return {"ipainstaller", "--root", device.root(), command, argument};
}

/// Something that is asked of a device, and what it is about.
struct Case {
    std::string name;
    /// Every so manieth call is tried in the usual run.
    int stride;
    std::function<void(const ProofDevice&)> prepare;
    std::function<std::vector<std::string>(const ProofDevice&)> words;
    std::function<Contents(const ProofDevice&)> state;
    /// Whether it is to be asked for once more after a kill, and then comes to its end.
    bool isRepeated = false;
};

void PrintTo(const Case& each, std::ostream* out) {
    *out << each.name;
}

std::vector<Case> cases() {
    const auto none = [](const ProofDevice&) {};
    const auto rebuilding = [](const ProofDevice& device) {
        ASSERT_EQ(device.request(), device.success);
        device.installSource("2");
    };
    const auto installing = [](const ProofDevice& device) {
        ASSERT_TRUE(device.installer().install(archiveOf(device, large, '1')));
    };
    const auto removing = [installing](const ProofDevice& device) {
        installing(device);
        ASSERT_TRUE(device.installer().uninstall(large, Installer::Removal::Undoable));
    };
    const auto archive = [](const ProofDevice& device) {
        return installer(device, "-f", archiveOf(device, large, '2'));
    };
    const auto command = [](const std::string& letter) {
        return [letter](const ProofDevice& device) { return installer(device, letter, large); };
    };
    const auto duplicate = [](const ProofDevice& device) {
        return device.bundle(device.duplicate);
    };
    const auto application = [](const ProofDevice& device) { return device.bundle(large); };
    return {{"duplicating", 13, none, &ProofDevice::duplicating, duplicate, true},
            {"updating", 17, rebuilding, &ProofDevice::updating, duplicate, true},
            {"installing", 4, none, archive, application},
            {"replacing", 4, installing, archive, application},
            {"removing", 4, installing, command("-u"), application},
            {"removingForAWhile", 4, installing, command("-U"), application},
            {"puttingBack", 4, removing, command("-r"), application},
            {"storing", 1, none,
             [](const ProofDevice& device) { return device.storing(std::string(100'000, 't')); },
             [](const ProofDevice& device) {
                 return Contents{{"settings", contentsOf(device.settingsPath())}};
             },
             true}};
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

/// A case that has once come to its end, and now is killed at one point after the other.
class Victim {
public:
    explicit Victim(const Case& which) : case_(which) {
        const ProofDevice device;
        case_.prepare(device);
        before_ = case_.state(device);
        EXPECT_EQ(runStepwise(device, case_.words(device),
                              [&](const Step& step) {
                                  const std::string& program = step.program;
                                  if (program != "bash")
                                      calls[program] = step.count;
                              }),
                  0);
        after_ = case_.state(device);
        EXPECT_NE(before_, after_);
    }

    /// How many calls each program makes.
    std::map<std::string, int> calls;

    /// Kills the program at its so manieth call: the application or the installer alone, since each
    /// makes sure of its own work; any other command with its application, which does not ask what
    /// became of it. `load` is another program that runs meanwhile, for ever.
    bool killAt(const std::string& program, int number, const std::string& load = "") const {
        SCOPED_TRACE(case_.name + ": " + program + " killed at call " + std::to_string(number));
        const ProofDevice device;
        case_.prepare(device);
        EXPECT_TRUE(device.installer().install(small(device, other)));
        const Contents source = device.bundle(device.source), beside = device.bundle(other);
        const std::vector<std::string> words = case_.words(device);
        const bool alone = program == "dubrix-terminal" || program == "ipainstaller";
        bool killed = false;
        {
            const ProcessGroup running({"sh", "-c", load, device.root(), small(device, other)},
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
        const Contents found = case_.state(device);
        EXPECT_TRUE(found == after_ || (killed && found == before_));
        const auto staged = contentsBelow(device.staging() / "Fine App/Payload/X.app");
        for (const auto& [name, content] : staged)
            if (alone && name.find(".dubrix-") == std::string::npos) {
                EXPECT_TRUE(content == source.at(name) || content == after_.at(name)) << name;
            }
        checkNextRuns(device, words);
        EXPECT_EQ(device.bundle(device.source), source);
        EXPECT_EQ(device.bundle(other), beside);
        return killed;
    }

private:
    /// The next runs take away what was left, and only that. A duplicate is built again, or the
    /// next one when this one was in place already.
    void checkNextRuns(const ProofDevice& device, const std::vector<std::string>& words) const {
        if (case_.isRepeated) {
            EXPECT_EQ(device.run(words).status, 0);
            EXPECT_EQ(case_.state(device), after_);
            if (!fs::is_empty(device.staging())) {
                EXPECT_EQ(device.request(), device.success);
            }
            EXPECT_TRUE(fs::is_empty(device.staging()));
        }
        const Contents left = case_.state(device);
        EXPECT_TRUE(device.installer().install(small(device, "com.example.next")));
        EXPECT_EQ(device.leftovers(), 0);
        EXPECT_EQ(case_.state(device), left);
        const auto settings = fs::directory_iterator(device.settingsPath().parent_path());
        EXPECT_EQ(std::distance(settings, {}), 1);
    }

    const Case& case_;
    Contents before_, after_;
};

unsigned numberFrom(const char* variable, unsigned otherwise) {
    const char* const text = std::getenv(variable);
    return text == nullptr ? otherwise : static_cast<unsigned>(std::stoul(text));
}

} // namespace

class KillTest : public testing::TestWithParam<Case> {
protected:
    void SetUp() override {
        if (!runStepwise(ProofDevice(), {"true"}, [](const Step&) {}))
            GTEST_SKIP() << "no process may be traced here";
    }
};

INSTANTIATE_TEST_SUITE_P(, KillTest, testing::ValuesIn(cases()),
                         [](const auto& each) { return each.param.name; });

/// With DUBRIX_EVERY_POINT set no call is left out, which takes minutes.
TEST_P(KillTest, LeavesTheOldOrTheNew) {
    const int stride = std::getenv("DUBRIX_EVERY_POINT") == nullptr ? GetParam().stride : 1;
    const Victim victim(GetParam());
    for (const auto& [program, calls] : victim.calls) {
        int kills = 0;
        for (int number = 1; number <= calls && !HasFailure(); number += stride)
            kills += victim.killAt(program, number) ? 1 : 0;
        EXPECT_GT(kills * stride, calls / 2);
        std::printf("%s: %s killed at %d calls\n", GetParam().name.c_str(), program.c_str(), kills);
    }
}

/// While another application is replaced again and again, until that is killed, too, at any moment.
/// DUBRIX_KILLS says how many kills, DUBRIX_KILL_SEED repeats a run as far as timing allows.
TEST(RandomKillTest, WhateverIsKilledUnderLoadIsTheOldOrTheNew) {
    if (!runStepwise(ProofDevice(), {"true"}, [](const Step&) {}))
        GTEST_SKIP() << "no process may be traced here";
    const unsigned seed = numberFrom("DUBRIX_KILL_SEED", std::random_device{}());
    std::printf("DUBRIX_KILL_SEED=%u\n", seed);
    SCOPED_TRACE("DUBRIX_KILL_SEED=" + std::to_string(seed));
    std::mt19937 random(seed);
    const std::vector<Case> all = cases();
    const std::vector<Victim> victims(all.begin(), all.end());
    const std::string load = "while ipainstaller --root \"$0\" -f \"$1\"; do :; done";
    unsigned kills = 0;
    for (const unsigned wanted = numberFrom("DUBRIX_KILLS", 12);
         kills < wanted && !testing::Test::HasFailure();) {
        const Victim& victim = victims[random() % victims.size()];
        auto program = victim.calls.begin();
        std::advance(program, random() % victim.calls.size());
        kills += victim.killAt(program->first, 1 + random() % program->second, load) ? 1 : 0;
    }
    std::printf("%u kills\n", kills);
}

} // namespace dubrix
