#include "tests/proof/ProofDevice.h"

namespace dubrix {

namespace {

namespace fs = std::filesystem;
using Contents = ProofDevice::Contents;

/// The system calls that change files or processes, or wait for them: what lies between two of
/// them leaves nothing different behind.
const std::string changes =
    "?rename,?renameat,?renameat2,?unlink,?unlinkat,?rmdir,?mkdir,?mkdirat,"
    "?link,?linkat,?symlink,?symlinkat,?fsync,?syncfs,?write,?pwrite64,?writev,"
    "?copy_file_range,?ftruncate,?chmod,?fchmod,?fchmodat,?utimensat,"
    "?fork,?vfork,?clone,?clone3,?wait4";

/// The n-th call of one name.
struct Point {
    std::string call;
    int number;
};

std::vector<std::string> traced(const fs::path& log) {
    return {"strace", "-qq", "-o", log.native(), "-e", "trace=" + changes};
}

/// The same of all threads of a program; each counts its own calls.
std::vector<std::string> withThreads(std::vector<std::string> words) {
    words.insert(words.begin() + 1, "-f");
    return words;
}

std::vector<std::string> killedAt(const Point& point) {
    return {"strace", "-qq",
            "-o",     "/dev/null",
            "-e",     "trace=" + point.call,
            "-e",     "inject=" + point.call + ":signal=KILL:when=" + std::to_string(point.number)};
}

/// Every `stride`-th call that a log of `traced` names.
std::vector<Point> pointsOf(const fs::path& log, std::size_t stride) {
    std::map<std::string, int> counts;
    std::map<std::string, int> most;
    std::vector<Point> points;
    std::size_t seen = 0;
    std::istringstream lines(contentsOf(log));
    for (std::string line; std::getline(lines, line);) {
        const std::string thread = line.substr(0, line.find_first_not_of("0123456789 "));
        const std::string call = line.substr(thread.size(), line.find('(') - thread.size());
        if (call.size() + thread.size() == line.size() || call.find_first_of("-+<") == 0)
            continue;
        const int number = ++counts[thread + call];
        if (number <= most[call])
            continue;
        most[call] = number;
        if (seen++ % stride == 0)
            points.push_back({call, number});
    }
    return points;
}

/// A stand-in for a command, run by the given words. When it is killed, so are the application and
/// all its processes.
std::string standIn(const std::string& command, const std::vector<std::string>& words) {
    std::string script;
    for (const std::string& word : words)
        script += "'" + word + "' ";
    return script + command +
           " \"$@\"\nstatus=$?\n[ $status -lt 128 ] || kill -KILL 0\nexit $status\n";
}

/// Empty where a program can be killed at a call of its own; else why not.
std::string whyNoTracing() {
    const TemporaryFolder folder;
    const std::string command = "strace -qq -o /dev/null -e trace=write -e "
                                "inject=write:signal=KILL:when=1 echo >'" +
                                (folder / "out").native() + "' 2>'" + (folder / "err").native() +
                                "'";
    const int status = std::system(command.c_str());
    const bool killed = (WIFEXITED(status) && WEXITSTATUS(status) == 128 + SIGKILL) ||
                        (WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
    return killed ? "" : "strace cannot kill here: " + contentsOf(folder / "err");
}

} // namespace

class KillTest : public testing::Test {
protected:
    void SetUp() override {
        if (const std::string reason = whyNoTracing(); !reason.empty())
            GTEST_SKIP() << reason;
    }

    /// A device on which the duplicate has version 1 and the source version 2, or no duplicate is.
    static void prepare(const ProofDevice& device, bool rebuild) {
        if (rebuild) {
            ASSERT_EQ(device.request().output, device.success);
            device.installSource("2");
        }
    }

    /// With DUBRIX_EVERY_POINT set no call is left out, which takes minutes.
    static std::size_t stride(std::size_t usual) {
        return std::getenv("DUBRIX_EVERY_POINT") != nullptr ? 1 : usual;
    }

    /// Every file of the staged bundle is the source's or the tinted one, none is half written.
    static void checkStaged(const ProofDevice& device, const Contents& after) {
        const Contents source = device.bundle(device.source);
        for (const auto& [name, content] : device.staged()) {
            if (name.find(".dubrix-") != std::string::npos)
                continue; // for the next run to sweep
            ASSERT_TRUE(source.contains(name)) << name;
            EXPECT_TRUE(content == source.at(name) || content == after.at(name)) << name;
        }
    }

    /// A request in which the victim, the application or a command of its, is run by the words.
    static Ended request(const ProofDevice& device, const std::string& victim,
                         const std::vector<std::string>& words) {
        if (victim == "application")
            return device.request(words);
        const std::string folder = victim == "cp" ? "/usr/bin" : PROGRAMS;
        device.putTool(victim, standIn(folder + "/" + victim, words));
        const Ended ended = device.request();
        fs::remove(device.tools() / victim);
        return ended;
    }

    static void killEverywhere(const std::string& victim, bool rebuild, std::size_t stride) {
        const ProofDevice unharmed;
        prepare(unharmed, rebuild);
        const Contents before = unharmed.bundle(unharmed.duplicate);
        const fs::path log = unharmed.folder() / "log";
        ASSERT_EQ(request(unharmed, victim, traced(log)).output, unharmed.success);
        const Contents after = unharmed.bundle(unharmed.duplicate);
        ASSERT_NE(before, after);

        int faults = 0;
        for (const Point& point : pointsOf(log, stride)) {
            SCOPED_TRACE(victim + " killed at " + point.call + " " + std::to_string(point.number));
            const ProofDevice device;
            prepare(device, rebuild);
            const Contents source = device.bundle(device.source);
            const std::string settings = contentsOf(device.settingsPath());
            const bool killed = request(device, victim, killedAt(point)).killed();
            faults += killed ? 1 : 0;
            if (victim == "application")
                checkStaged(device, after);

            const Contents found = device.bundle(device.duplicate);
            EXPECT_TRUE(found == after || (killed && found == before));
            EXPECT_EQ(device.bundle(device.source), source);
            EXPECT_EQ(contentsOf(device.settingsPath()), settings);
            // Builds the duplicate again, or the next one when this one was in place already.
            EXPECT_EQ(device.request().output, device.success);
            EXPECT_EQ(device.bundle(device.duplicate), after);
            EXPECT_EQ(device.leftovers(), 0);
            EXPECT_TRUE(fs::is_empty(device.root() / "tmp"));
        }
        EXPECT_GT(faults, 3);
        std::printf("%s: %d faults\n", victim.c_str(), faults);
    }
};

TEST_F(KillTest, ANewDuplicateIsNeverHalfThere) {
    killEverywhere("application", false, stride(4));
}

TEST_F(KillTest, ARebuiltDuplicateIsTheOldOrTheNew) {
    killEverywhere("application", true, stride(6));
}

TEST_F(KillTest, ACommandKilledWithItsApplicationChangesNothing) {
    killEverywhere("cp", false, stride(4));
    killEverywhere("zip", true, stride(4));
}

TEST_F(KillTest, AnInstallerKilledWithItsApplicationInstallsAllOrNothing) {
    killEverywhere("ipainstaller", true, stride(5));
}

/// Together the large files are enough to be unpacked by several threads.
TEST_F(KillTest, AnInstallerIsKilledAtEveryCall) {
    const std::string identifier = "com.example.large";
    const auto archiveOf = [&](const ProofDevice& device, const std::string& version) {
        std::vector<ZipItem> items{{"sub/", "", S_IFDIR | 0555},
                                   {"link", "sub/b", S_IFLNK | 0777},
                                   {"a", version},
                                   {"sub/b", version}};
        for (const char* name : {"large", "sub/larger"})
            items.push_back({name, std::string(1'200'000, version[0])});
        return device.application(identifier, version, items);
    };
    const auto change = [&](const ProofDevice& device, std::vector<std::string> words,
                            const std::string& command, const std::string& after) {
        words.insert(words.end(),
                     {PROGRAMS "/ipainstaller", "--root", device.root(), command,
                      command == "-f" ? archiveOf(device, after).native() : identifier});
        return device.run(words);
    };
    struct Step {
        std::string before, command, after;
    };
    int faults = 0;
    for (const auto& [before, command, after] : {Step{"", "-f", "1"},
                                                 {"1", "-f", "2"},
                                                 {"2", "-u", ""},
                                                 {"2", "-U", ""},
                                                 {"", "-r", "2"}}) {
        std::map<bool, int> seen;
        std::vector<Point> points{{"none", 1}};
        Contents old, next;
        for (std::size_t index = 0; index < points.size(); ++index) {
            const Point point = points[index];
            SCOPED_TRACE(before + " " + command + " " + after + ", killed at " + point.call + " " +
                         std::to_string(point.number));
            const ProofDevice device;
            if (!before.empty() || command == "-r") {
                ASSERT_TRUE(
                    device.installer().install(archiveOf(device, before.empty() ? after : before)));
            }
            if (command == "-r") {
                ASSERT_TRUE(device.installer().uninstall(identifier, Installer::Removal::Undoable));
            }
            bool killed = false;
            if (index == 0) {
                const fs::path log = device.folder() / "log";
                old = device.bundle(identifier);
                ASSERT_EQ(change(device, withThreads(traced(log)), command, after).status, 0);
                next = device.bundle(identifier);
                ASSERT_NE(old, next);
                for (Point& found : pointsOf(log, 1))
                    points.push_back(std::move(found));
            } else {
                killed = change(device, withThreads(killedAt(point)), command, after).killed();
            }
            faults += killed ? 1 : 0;
            const Contents found = device.bundle(identifier);
            EXPECT_TRUE(found == next || (killed && found == old));
            ++seen[found == next];
            ASSERT_TRUE(device.installer().install(device.application("com.example.next", "1")));
            EXPECT_EQ(device.leftovers(), 0);
            EXPECT_EQ(device.bundle(identifier), found);
        }
        EXPECT_EQ(seen.size(), 2U) << "killed before and after the change";
    }
    std::printf("ipainstaller alone: %d faults\n", faults);
}

TEST_F(KillTest, SettingsAreTheOldOrTheNew) {
    const std::string text(100'000, 't');
    const auto store = [&text](const ProofDevice& device, std::vector<std::string> words) {
        words.insert(words.end(),
                     {DUPLICATE_ONCE, device.root().native(), "set", "customText", text});
        return device.run(words);
    };
    const ProofDevice unharmed;
    const fs::path log = unharmed.folder() / "log";
    const std::string before = contentsOf(unharmed.settingsPath());
    store(unharmed, traced(log));
    const std::string after = contentsOf(unharmed.settingsPath());
    ASSERT_NE(before, after);
    int faults = 0;
    for (const Point& point : pointsOf(log, 1)) {
        SCOPED_TRACE(point.call + " " + std::to_string(point.number));
        const ProofDevice device;
        const bool killed = store(device, killedAt(point)).killed();
        faults += killed ? 1 : 0;
        const std::string found = contentsOf(device.settingsPath());
        EXPECT_TRUE(found == after || (killed && found == before));
        store(device, {});
        EXPECT_EQ(contentsOf(device.settingsPath()), after);
        EXPECT_EQ(std::distance(fs::directory_iterator(device.settingsPath().parent_path()), {}),
                  1);
    }
    EXPECT_GT(faults, 2);
    std::printf("settings: %d faults\n", faults);
}

} // namespace dubrix
