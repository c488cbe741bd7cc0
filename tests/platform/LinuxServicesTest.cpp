#include "platform/linux/FileStyleByteCount.h"
#include "platform/linux/LinuxApplicationList.h"
#include "platform/linux/LinuxApplicationWorkspace.h"
#include "platform/linux/LinuxCommandRunner.h"
#include "platform/linux/LinuxFileManager.h"
#include "tests/device/DeviceFolder.h"

#include <QCoreApplication>
#include <QTimer>
#include <limits>

namespace dubrix {

TEST(LinuxCommandRunner, WaitsAndPassesEveryByteOn) {
    const TemporaryFolder folder;
    std::string strange = "\xff\xfe \xc3\x28 \xe2\x82 * $HOME \\ \" ` \n \t";
    LinuxCommandRunner runner("/", "/none");
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
    LinuxCommandRunner(folder.path(), folder / "paths.bash")
        .runCommand("echo $greeting $DUBRIX_ROOT > \"$DUBRIX_ROOT/out\"");
    EXPECT_EQ(contentsOf(folder / "out"), "hello " + folder.path().native() + "\n");
}

TEST(LinuxCommandRunner, TheEventLoopGoesOnMeanwhile) {
    int argumentCount = 1;
    char name[] = "platform_tests";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(argumentCount, arguments);
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    // The command ends only when the timer, which needs the event loop, has fired.
    QTimer::singleShot(0, [&folder] { std::ofstream(folder / "pipe") << "go\n"; });
    LinuxCommandRunner("/", "/none")
        .runCommand("cd '" + folder.path().native() + "' && read -r line < pipe; echo $line > out");
    EXPECT_EQ(contentsOf(folder / "out"), "go\n");

    // Told to quit meanwhile, it still waits for the end.
    QTimer::singleShot(0, [&folder] {
        QCoreApplication::quit();
        std::ofstream(folder / "pipe") << "end\n";
    });
    LinuxCommandRunner("/", "/none")
        .runCommand("cd '" + folder.path().native() + "' && read -r line < pipe; echo $line > out");
    EXPECT_EQ(contentsOf(folder / "out"), "end\n");

    // A folder's removal, which can take as long as a command's run, lets it go on too.
    LinuxFileManager files(folder.path());
    putFile(folder / "tmp/staging/file", "");
    bool wentOn = false;
    QTimer::singleShot(0, [&wentOn] { wentOn = true; });
    EXPECT_TRUE(files.removeItemAtPath("/tmp/staging"));
    EXPECT_TRUE(wentOn);
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

TEST(LinuxApplicationList, AnswersAreOfThisMoment) {
    const DeviceFolder device;
    const LinuxApplicationList list(device.root());
    const LinuxApplicationWorkspace workspace(device.root());
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

} // namespace dubrix
