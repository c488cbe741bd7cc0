#include "formats/lists/PropertyList.h"
#include "platform/posix/FileStyleByteCount.h"
#include "platform/posix/PosixApplications.h"
#include "platform/posix/PosixCommandRunner.h"
#include "platform/posix/PosixFileManager.h"
#include "tests/device/DeviceFolder.h"
#include "tests/formats/CrushedPngFile.h"

#include <csignal>
#include <fcntl.h>
#include <limits>
#include <poll.h>
#include <thread>

namespace dubrix {

TEST(PosixCommandRunner, WaitsAndPassesEveryByteOn) {
    const TemporaryFolder folder;
    std::string strange = "\xff\xfe \xc3\x28 \xe2\x82 * $HOME \\ \" ` \n \t";
    PosixCommandRunner runner("/", "/none");
    runner.runCommand("printf %s '" + strange + "' > '" + (folder / "out").native() + "'");
    EXPECT_EQ(contentsOf(folder / "out"), strange);
    runner.runCommand("exit 7"); // of no interest to anybody
    runner.runCommand("kill -9 $$");
    // Bash itself: what only it can do, in the program's own environment and folder.
    ::setenv("DUBRIX_TEST_VALUE", "inherited", 1);
    runner.runCommand(
        "[[ a == ? ]] && echo \"$DUBRIX_TEST_VALUE $PWD ${DUBRIX_ROOT-none} $-\" > '" +
        (folder / "out").native() + "'");
    EXPECT_EQ(contentsOf(folder / "out"),
              "inherited " + std::filesystem::current_path().native() + " none hBc\n");
    putFile(folder / "paths.bash", "greeting=hello");
    PosixCommandRunner(folder.path(), folder / "paths.bash")
        .runCommand("echo $greeting $DUBRIX_ROOT > \"$DUBRIX_ROOT/out\"");
    EXPECT_EQ(contentsOf(folder / "out"), "hello " + folder.path().native() + "\n");
}

TEST(PosixCommandRunner, PassesNoDescriptorOn) {
    const TemporaryFolder folder;
    putFile(folder / "secret", "");
    const int inherited = ::open((folder / "secret").c_str(), O_RDWR); // not closed by exec
    PosixCommandRunner("/").runCommand("{ : >&" + std::to_string(inherited) + " && echo open || " +
                                       "echo closed; } > '" + (folder / "out").native() +
                                       "' 2>/dev/null");
    ::close(inherited);
    EXPECT_EQ(contentsOf(folder / "out"), "closed\n");
}

TEST(PosixCommandRunner, StopsACommandWithAllThatItHasStarted) {
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    const Descriptor reading(::open((folder / "pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    static PosixCommandRunner* running = nullptr;
    PosixCommandRunner runner("/");
    runner.makeStoppable();
    running = &runner;
    ::signal(SIGUSR1, [](int) { running->stop(); });
    runner.runCommand("cd '" + folder.path().native() +
                      "'; exec 3> pipe; sleep 1000 & kill -USR1 $PPID; wait; echo > after");
    ::signal(SIGUSR1, SIG_DFL);
    EXPECT_TRUE(runner.isStopped());
    // Nobody is left who could write.
    pollfd end{reading.get(), POLLIN, 0};
    EXPECT_EQ(::poll(&end, 1, 30'000), 1);
    EXPECT_TRUE(end.revents & POLLHUP);
    runner.runCommand("echo > '" + (folder / "after").native() + "'");
    EXPECT_FALSE(std::filesystem::exists(folder / "after"));
}

TEST(PosixCommandRunner, TellsWhatACommandHasWritten) {
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "reached").c_str(), 0600), 0);
    ASSERT_EQ(::mkfifo((folder / "seen").c_str(), 0600), 0);
    PosixCommandRunner runner("/");
    runner.makeStoppable();
    std::vector<std::uint64_t> written;
    {
        const std::jthread looking([&] {
            for (int times = 0; times < 2; ++times) {
                const Descriptor reached(::open((folder / "reached").c_str(), O_RDONLY));
                written.push_back(runner.bytesWritten());
                const Descriptor seen(::open((folder / "seen").c_str(), O_WRONLY));
            }
        });
        // By a process that has ended, and by one of a process that has not.
        runner.runCommand("cd '" + folder.path().native() +
                          "'; look() { : > reached; : < seen; };" +
                          "head -c 1000000 /dev/zero > one; look;" +
                          "(head -c 500000 /dev/zero > two; look; true); true");
    }
    ASSERT_EQ(written.size(), 2U);
    EXPECT_NEAR(static_cast<double>(written[0]), 1'000'000, 1000);
    EXPECT_NEAR(static_cast<double>(written[1]), 1'500'000, 1000);
    EXPECT_EQ(runner.bytesWritten(), 0U) << "none is running";
}

TEST(FileStyleByteCount, RoundsAndCarries) {
    const struct {
        std::int64_t bytes;
        const char* text;
    } cases[] = {
        {0, "Zero KB"},
        {1, "1 byte"},
        {-1, "-1 byte"},
        {2, "2 bytes"},
        {999, "999 bytes"},
        {1'000, "1 KB"},
        {1'499, "1 KB"},
        {1'500, "2 KB"},
        {-1'500, "-2 KB"},
        {999'499, "999 KB"},
        {999'500, "1 MB"},
        {1'000'000, "1 MB"},
        {1'049'999, "1 MB"},
        {1'050'000, "1.1 MB"},
        {12'345'678, "12.3 MB"},
        {999'949'999, "999.9 MB"},
        {999'950'000, "1 GB"},
        {1'004'999'999, "1 GB"},
        {1'005'000'000, "1.01 GB"},
        {1'250'000'000, "1.25 GB"},
        {1'500'000'000, "1.5 GB"},
        {-2'147'483'648, "-2.15 GB"},
        {999'994'999'999, "999.99 GB"},
        {999'995'000'000, "1 TB"},
        {std::numeric_limits<std::int64_t>::max(), "9.22 EB"},
        {std::numeric_limits<std::int64_t>::min(), "-9.22 EB"},
    };
    for (const auto& [bytes, text] : cases)
        EXPECT_EQ(FileStyleByteCount().stringFromByteCount(bytes), text) << bytes;
    EXPECT_EQ(FileStyleByteCount().stringFromByteCount(999'950), "1 MB");
}

TEST(PosixApplicationList, AnswersAreOfThisMoment) {
    const DeviceFolder device;
    const PosixApplicationList list(device.root());
    const PosixApplicationWorkspace workspace(device.root());
    const auto value = [&list](const char* key) { return list.valueForKey(key, "com.example.a"); };
    EXPECT_EQ(value("path"), std::nullopt);
    EXPECT_FALSE(workspace.applicationIsInstalled("com.example.a"));

    ASSERT_TRUE(device.installer().install(device.application("com.example.a", "1.0 beta")));
    EXPECT_TRUE(workspace.applicationIsInstalled("com.example.a"));
    EXPECT_FALSE(workspace.applicationIsInstalled("com.example.A"));
    EXPECT_TRUE(value("path")->ends_with("/X.app") && value("path")->starts_with("/var/"));
    EXPECT_EQ(value("displayName"), "X");
    EXPECT_EQ(value("bundleVersion"), "1.0 beta");
    EXPECT_EQ(value("CFBundleIdentifier"), std::nullopt);

    PropertyList info = *PropertyList::parse(infoPlist("com.example.a"));
    info.setValueForKey("CFBundleVersion", PropertyList::integer(2));
    info.setValueForKey("CFBundleDisplayName", PropertyList::string(""));
    putFile(device.installed("com.example.a", "Info.plist"), info.xml());
    EXPECT_EQ(value("bundleVersion"), std::nullopt) << "a number is no version text";
    EXPECT_EQ(value("displayName"), "") << "passed on unchanged";
    EXPECT_EQ(list.applications(),
              (std::map<std::string, std::string>{{"com.example.a", ""},
                                                  {"com.example.settings", "Settings"}}));

    putFile(device.installed("com.example.a", "Info.plist"), "damaged");
    EXPECT_TRUE(workspace.applicationIsInstalled("com.example.a"));
    EXPECT_TRUE(value("path").has_value());
    EXPECT_EQ(value("displayName"), std::nullopt);
    ASSERT_TRUE(device.installer().uninstall("com.example.a"));
    EXPECT_EQ(value("path"), std::nullopt);
    EXPECT_EQ(list.valueForKey("path", "com.example.settings"), std::nullopt) << "a system one";
}

TEST(PosixApplicationIcons, GivesTheFirstIconThatCanBeDrawn) {
    TemporaryFolder folder;
    const PosixApplicationIcons icons(folder.path());
    const auto bundle = folder / "var/It.app";
    EXPECT_FALSE(icons.iconOfBundle("/var/It.app", 58));
    putFile(bundle / "Info.plist", "{CFBundleIconFiles = (A, B);}");
    EXPECT_FALSE(icons.iconOfBundle("/var/It.app", 58));
    CrushedPngFile crushed{.width = 3, .height = 2};
    const std::vector<Rgba> pixels(6, Rgba{10, 20, 30, 255});
    putFile(bundle / "B.png", crushed.bytes(pixels));
    const auto whole = CrushedPngFile{.width = 60, .height = 60}.bytes(samplePixels(3600));
    putFile(bundle / "A.png", whole.substr(0, whole.size() / 2)); // suits better, but damaged
    const auto picture = icons.iconOfBundle("/var/It.app", 58);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->width, 3U);
    EXPECT_EQ(picture->height, 2U);
    for (std::size_t sample = 0; sample < 4; ++sample)
        EXPECT_EQ(picture->bytes[20 + sample], pixels[5][sample]) << sample;
    putFile(bundle / "A.png", whole);
    EXPECT_EQ(icons.iconOfBundle("/var/It.app", 58)->width, 60U);
}

} // namespace dubrix
