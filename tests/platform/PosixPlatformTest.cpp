#include "platform/posix/FileStyleByteCount.h"
#include "platform/posix/PosixApplications.h"
#include "platform/posix/PosixCommandRunner.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixSystemLog.h"
#include "platform/posix/linux/SystemCallConfinement.h"
#include "tests/device/DeviceFolder.h"
#include "tests/formats/ImageFiles.h"

#include <csignal>
#include <fcntl.h>
#include <limits>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <regex>
#include <sys/syscall.h>

namespace dubrix {

namespace fs = std::filesystem;

class PosixFileManagerTest : public testing::Test {
protected:
    PosixFileManagerTest() {
        putFile(root / "tmp/My App/Payload/X.app/Info.plist", "info");
        putFile(root / "tmp/file", "a file");
        putFile(root / "var/outside/file", "outside");
        fs::create_symlink("../var/outside", root / "tmp/link");
        fs::create_symlink("../../../../var/outside", root / "tmp/My App/Payload/X.app/astray");
        fs::create_symlink(".", root / "tmp/My App/Payload/X.app/here");
    }
    bool outsideIsWhole() const { return contentsOf(root / "var/outside/file") == "outside"; }

    TemporaryFolder folder;
    const fs::path root = folder / "device";
    PosixFileManager files{root};
};

TEST_F(PosixFileManagerTest, RemovesOnlyBelowTmp) {
    using namespace std::string_literals;
    for (const std::string& path :
         {""s, "/"s, "/tmp"s, "/tmp/"s, "/tmp//"s, "/tmp/./"s, "/tmp/../var/outside/"s,
          "/tmp/My App/.."s, "/tmp/./file"s, "/tmp//file"s, "/tmp/link/file"s,
          "/tmp/My App/Payload/X.app/astray/file"s, "/var/outside/file"s, "/tmpfile"s, "tmp/file"s,
          "/tmp/file\0more"s}) {
        EXPECT_FALSE(files.removeItemAtPath(path)) << path;
        EXPECT_TRUE(outsideIsWhole() && fs::exists(root / "tmp/file")) << path;
    }
    EXPECT_TRUE(files.removeItemAtPath("/tmp/My App/"));
    EXPECT_TRUE(files.removeItemAtPath("/tmp/link/")) << "the link itself";
    EXPECT_TRUE(files.removeItemAtPath("/tmp/file"));
    EXPECT_TRUE(fs::is_empty(root / "tmp") && outsideIsWhole());

    fs::remove(root / "tmp");
    fs::create_symlink("var/outside", root / "tmp");
    EXPECT_TRUE(files.removeItemAtPath("/tmp/file")) << "the device's tmp may be elsewhere itself";
}

TEST_F(PosixFileManagerTest, PathsIntoAStagedBundleEndInside) {
    const std::string bundle = "/tmp/My App/Payload/X.app/";
    for (const std::string& path :
         {bundle, bundle + "/Info.plist", bundle + "here/here/Info.plist",
          bundle + "here/../Info.plist", // by its text
          bundle + "../X.app/Info.plist", std::string("/tmp/My App/Payload"),
          std::string("/tmp/link/file"), std::string("//tmp///file"),
          std::string("/../../../../tmp/file")}) // nothing lies above the root
        EXPECT_TRUE(files.fileExistsAtPath(path)) << path;
    for (const std::string& path :
         {bundle + "../../../file", bundle + "..", bundle + "astray/file", bundle + "astray",
          bundle + "missing/../../../../../var/outside/file", std::string(),
          std::string("/tmp/file\0", 10)})
        EXPECT_FALSE(files.fileExistsAtPath(path)) << path;

    EXPECT_EQ(files.contentsAtPath(bundle + "Info.plist"), "info");
    EXPECT_EQ(files.contentsAtPath(bundle + "astray/file"), std::nullopt);
    EXPECT_EQ(files.contentsAtPath(bundle), std::nullopt);
    EXPECT_FALSE(files.writeToFile(bundle + "astray/file", "new"));
    EXPECT_FALSE(files.writeToFile(bundle + "astray/new", "new"));
    EXPECT_FALSE(files.writeToFile(bundle + "../../../../var/outside/file", "new"));
    EXPECT_FALSE(files.writeToFile("/tmp/missing/file", "new"));
    EXPECT_TRUE(outsideIsWhole() && !fs::exists(root / "var/outside/new"));
    EXPECT_TRUE(files.writeToFile(bundle + "here/Info.plist", "new"));
    EXPECT_EQ(contentsOf(root / "tmp/My App/Payload/X.app/Info.plist"), "new");

    // A bundle that is itself a link is measured by where it leads.
    fs::create_directory_symlink("../../../var/outside", root / "tmp/My App/Payload/Y.app");
    EXPECT_TRUE(files.fileExistsAtPath("/tmp/My App/Payload/Y.app/file"));
}

TEST_F(PosixFileManagerTest, MakesFoldersAndMeasuresWhatIsBelow) {
    for (const char* const path : {"/tmp/a/b c/", "/tmp/a/b c/", "/tmp/My App/Payload"})
        EXPECT_TRUE(files.createDirectoryAtPath(path)) << path;
    EXPECT_TRUE(fs::is_directory(root / "tmp/a/b c"));
    for (const char* const path : {"/tmp/file", "/tmp/file/below"})
        EXPECT_FALSE(files.createDirectoryAtPath(path)) << path;

    const auto sizes = files.sizesOfItemsBelowPath("/tmp/My App//");
    EXPECT_EQ(sizes.size(), 5U) << "two of folders";
    for (const int size : {4, 1, 23}) // a file, a link "." and one to somewhere else themselves
        EXPECT_EQ(std::ranges::count(sizes, size), 1) << size;
    for (const char* const path : {"/tmp/file", "/none"})
        EXPECT_TRUE(files.sizesOfItemsBelowPath(path).empty()) << path;
}

/// A folder that commands run in, and what they leave in its file "out".
struct PosixCommandRunnerTest : testing::Test {
    std::string outputOf(const std::string& command) {
        runner.runCommand("cd '" + folder.path().native() + "'; " + command);
        return contentsOf(folder / "out");
    }

    const TemporaryFolder folder;
    PosixCommandRunner runner{"/", "/none"};
};

TEST_F(PosixCommandRunnerTest, WaitsAndPassesOnWhatItShould) {
    const std::string strange = "\xff\xfe \xc3\x28 \xe2\x82 * $HOME \\ \" ` \n \t";
    EXPECT_EQ(outputOf("printf %s '" + strange + "' > out"), strange);
    ::setenv("DUBRIX_TEST_VALUE", "inherited", 1);
    EXPECT_EQ(outputOf("[[ a == ? ]] && echo \"$DUBRIX_TEST_VALUE $OLDPWD ${DUBRIX_ROOT-none} $- "
                       "$(umask) $(cut -d ' ' -f 5 /proc/$$/stat)\" > out"),
              "inherited " + std::filesystem::current_path().native() + " none hBc 0002 " +
                  std::to_string(::getpgrp()) + "\n");
    putFile(folder / "secret", "");
    const int inherited = ::open((folder / "secret").c_str(), O_RDWR); // not closed by exec
    EXPECT_EQ(outputOf("{ : >&" + std::to_string(inherited) + " && echo open || echo closed; } " +
                       "> out 2> /dev/null"),
              "closed\n");
    ::close(inherited);
    putFile(folder / "paths.bash", "greeting=hello");
    ::setenv("DUBRIX_ROOT", "of somebody else", 1);
    PosixCommandRunner(folder.path(), folder / "paths.bash")
        .runCommand("echo $greeting $DUBRIX_ROOT > \"$DUBRIX_ROOT/out\"");
    ::unsetenv("DUBRIX_ROOT");
    EXPECT_EQ(contentsOf(folder / "out"), "hello " + folder.path().native() + "\n");
}

TEST_F(PosixCommandRunnerTest, StopsACommandWithAllThatItHasStarted) {
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    const Descriptor reading(::open((folder / "pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    static PosixCommandRunner* running = nullptr;
    runner.makeStoppable();
    running = &runner;
    ::signal(SIGUSR1, [](int) { running->stop(); });
    struct sigaction interrupting{};
    interrupting.sa_handler = [](int) {};
    ::sigaction(SIGUSR2, &interrupting, nullptr);
    outputOf("exec 3> pipe; sleep 1000 & kill -USR2 $PPID; /bin/true; kill -USR1 $PPID; wait; echo "
             "> out");
    ::signal(SIGUSR2, SIG_DFL);
    ::signal(SIGUSR1, SIG_DFL);
    EXPECT_TRUE(runner.isStopped());
    pollfd end{reading.get(), POLLIN, 0};
    EXPECT_EQ(::poll(&end, 1, 30'000), 1);
    EXPECT_TRUE(end.revents & POLLHUP);
    EXPECT_EQ(outputOf("echo > out"), "") << "neither the rest nor another one";
}

TEST_F(PosixCommandRunnerTest, AConfinedCommandReachesNoMemoryButItsOwn) {
    struct Impossible : CommandConfinement {
        bool enter() const override { return false; }
    };
    PosixCommandRunner("/", "/none", std::make_unique<Impossible>())
        .runCommand("echo > '" + (folder / "out").native() + "'");
    EXPECT_FALSE(fs::exists(folder / "out"));
    const sock_filter everything = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
    putFile(folder / "filter", {reinterpret_cast<const char*>(&everything), sizeof everything});
    const std::string attack =
        "cd '" + folder.path().native() +
        "'; rm -f out; { : <> /proc/$PPID/mem; } 2> /dev/null && echo theirs > "
        "out; : <> /proc/$$/mem && echo own >> out";
    runner.runCommand(attack);
    if (contentsOf(folder / "out") != "theirs\nown\n")
        GTEST_SKIP() << "other processes' memory is closed without confinement, too";
    if (::syscall(SYS_landlock_create_ruleset, nullptr, 0, 1) < 2)
        GTEST_SKIP() << "the kernel has no Landlock with renaming";
    PosixCommandRunner confined("/", "/none", SystemCallConfinement::read(folder / "filter"));
    confined.runCommand(attack);
    EXPECT_EQ(contentsOf(folder / "out"), "own\n");
    confined.runCommand("cd '" + folder.path().native() + "'; mkdir a b; echo > a/c; ln a/c b/c");
    EXPECT_TRUE(fs::exists(folder / "b/c"));
}

TEST(FileStyleByteCount, RoundsAndCarries) {
    const std::pair<std::int64_t, const char*> cases[] = {
        {0, "Zero KB"},
        {1, "1 byte"},
        {-999, "-999 bytes"},
        {1'000, "1 KB"},
        {-1'500, "-2 KB"},
        {999'500, "1 MB"},
        {1'050'000, "1.1 MB"},
        {999'950'000, "1 GB"},
        {5'205'000'000'000'000, "5.21 PB"},
        {std::numeric_limits<std::int64_t>::min(), "-9.22 EB"}};
    for (const auto& [bytes, text] : cases)
        EXPECT_EQ(FileStyleByteCount().stringFromByteCount(bytes), text) << bytes;
}

TEST(PosixSystemLog, TellsWhoeverStartedTheProgram) {
    testing::internal::CaptureStderr();
    PosixSystemLog().log("a line");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "a line\n");
}

TEST(PosixApplications, AnswersAreOfThisMoment) {
    const DeviceFolder device;
    const PosixApplicationList list(device.root());
    const auto value = [&list](const char* key) { return list.valueForKey(key, "com.example.a"); };
    EXPECT_EQ(value("path"), std::nullopt);
    ASSERT_TRUE(device.installer().install(device.application("com.example.a", "1.0 beta")));
    EXPECT_TRUE(std::regex_match(
        value("path").value_or(""),
        std::regex("/var/containers/Bundle/Application/[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-"
                   "[89AB][0-9A-F]{3}-[0-9A-F]{12}/X.app")));
    EXPECT_EQ(value("displayName"), "X");
    EXPECT_EQ(value("bundleVersion"), "1.0 beta");
    EXPECT_EQ(value("CFBundleIdentifier"), std::nullopt);
    putFile(device.installed("com.example.a", "Info.plist"), "{CFBundleDisplayName = \"\";}");
    EXPECT_EQ(value("displayName"), "") << "passed on unchanged";
    EXPECT_EQ(value("bundleVersion"), std::nullopt);
    EXPECT_EQ(list.applications(),
              (std::map<std::string, std::string>{{"com.example.a", ""},
                                                  {"com.example.settings", "Settings"}}));
    putFile(device.installed("com.example.a", "Info.plist"), "damaged");
    EXPECT_EQ(value("displayName"), std::nullopt);
}

TEST(PosixApplications, GiveTheFirstIconThatCanBeDrawn) {
    const TemporaryFolder folder;
    const auto widthOfIcon = [&folder] {
        const auto icon = PosixApplicationIcons(folder.path()).iconOfBundle("/var/It.app", 58);
        return icon ? icon->width : 0;
    };
    const auto bundle = folder / "var/It.app";
    putFile(bundle / "Info.plist", "{CFBundleIconFiles = (A, B);}");
    EXPECT_EQ(widthOfIcon(), 0U);
    putFile(bundle / "B.png", pngOf(samplePixels(6), 3));
    const auto whole = CrushedPng().of(samplePixels(3600), 60);
    putFile(bundle / "A.png", whole.substr(0, whole.size() / 2)); // suits better, but damaged
    EXPECT_EQ(widthOfIcon(), 3U);
    putFile(bundle / "A.png", whole);
    EXPECT_EQ(widthOfIcon(), 60U);
    fs::resize_file(bundle / "A.png", 32U << 20);
    EXPECT_EQ(widthOfIcon(), 60U);
    fs::resize_file(bundle / "A.png", (32U << 20) + 1);
    EXPECT_EQ(widthOfIcon(), 3U) << "no icon is as large as that";
}

} // namespace dubrix
