#include "tests/device/DeviceFolder.h"

namespace dubrix {

namespace {

struct Ended {
    int status;
    std::string output;
    std::string errors;
};

Ended run(const DeviceFolder& device, const std::string& arguments) {
    const auto output = (device.folder() / "output").native();
    const auto errors = (device.folder() / "errors").native();
    const std::string command = "cd '" + device.folder().path().native() + "' && LC_ALL=C '" +
                                IPAINSTALLER + "' " + arguments + " >'" + output + "' 2>'" +
                                errors + "'";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentsOf(output), contentsOf(errors)};
}

} // namespace

TEST(InstallerProgram, SaysOneLineForEachApplication) {
    const DeviceFolder device;
    PropertyList info = PropertyList::dictionary();
    info.setValueForKey("CFBundleIdentifier", PropertyList::string("com.example.app3"));
    info.setValueForKey("CFBundleDisplayName", PropertyList::string("例\tExample\n3"));
    device.archive("my app.ipa", zipOf({{"Payload/例 X.app/Info.plist", info.xml()}}));
    device.archive("bad.ipa", "no archive");
    device.application("com.example.App", "4.2 Enhanced");

    Ended result = run(device, "--root device -f 'my app.ipa' bad.ipa com.example.App-*.ipa");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "Installed com.example.app3 (例 Example 3)\n"
                             "Installed com.example.App (X)\n");
    EXPECT_EQ(result.errors, "ipainstaller: bad.ipa: is not an archive\n");

    result = run(device, "--root device --progress lines -f 'my app.ipa' bad.ipa");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "progress 100\nInstalled com.example.app3 (例 Example 3)\n"
                             "Installed 1 of 2 applications; not installed: bad.ipa\n");

    result = run(device, "--root device -l");
    EXPECT_EQ(result.status, 0);
    const auto path = [&](const char* name) { return *device.registry().pathOf(name); };
    EXPECT_EQ(result.output, "com.example.App\tX\t4.2 Enhanced\t" + path("com.example.App") +
                                 "\ncom.example.app3\t例 Example 3\t\t" + path("com.example.app3") +
                                 "\n");

    result = run(device, "--root device -b com.example.app3 out.ipa");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(run(device, "--root device -u com.example.app3").output,
              "Removed com.example.app3\n");
    EXPECT_EQ(run(device, "--root device -u com.example.app3").status, 1);
    EXPECT_EQ(run(device, "--root device -f out.ipa").status, 0);
    EXPECT_EQ(path("com.example.app3").substr(path("com.example.app3").rfind('/')), "/例 X.app");
    EXPECT_EQ(run(device, "--root missing -l").status, 1);
}

TEST(InstallerProgram, TellsMistakesFromFailures) {
    const DeviceFolder device;
    for (const char* mistake : {"", "-f", "-u", "-u a b", "-b a", "-b a b c", "-l a", "-x",
                                "-f a -l", "-l -l", "a.ipa", "-l --progress", "--progress half -l",
                                "-l --root", "-l --root ''", "-f --force a.ipa", "-u ''"}) {
        const Ended result = run(device, mistake);
        EXPECT_EQ(result.status, 2) << mistake;
        EXPECT_EQ(result.output, "") << mistake;
        EXPECT_NE(result.errors.find("Usage:"), std::string::npos) << mistake;
    }
    const Ended help = run(device, "--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.output.rfind("Usage:", 0), 0u);
}

} // namespace dubrix
