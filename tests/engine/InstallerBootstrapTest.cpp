#include "tests/engine/EngineTest.h"

namespace dubrix {

/// A host of packages that has what the test says.
struct PackageHost final : Downloader {
    Text dataWithContentsOfURL(const std::string& address) override {
        addresses.push_back(address);
        return packages.at(addresses.size() - 1);
    }
    std::vector<std::string> addresses;
    std::vector<Text> packages; ///< one an attempt
};

TEST_F(EngineTest, InstallsItsToolWhenItIsMissing) {
    const std::string install = "dpkg -i /tmp/com.vorlund.appinst_iphoneos-arm.deb";
    const auto tool = onDevice("/usr/bin/appinst");
    const auto package = onDevice("/tmp/com.vorlund.appinst_iphoneos-arm.deb");
    PackageHost host;
    others.downloader = &host;
    CloneEngine installing(posix.ports(others), alerts);
    commands.act = [&](const std::string& command) {
        if (command == install && contentsOf(package) == "whole")
            putFile(tool, "the tool");
    };
    const struct {
        const char* what;
        bool isPresent;
        std::vector<Text> downloaded;
        const char* left; ///< of an earlier run
        std::size_t attempts;
        const char* packageAfter;
    } cases[] = {
        {"present", true, {}, "", 0, ""},
        {"missing", false, {"whole"}, "", 1, "whole"},
        {"new package in place of the old", false, {"whole"}, "old", 1, "whole"},
        {"no package at all", false, {{}, {}}, "", 2, ""},
        {"useless package left", false, {{}, {}}, "broken", 2, "broken"},
        {"package left", false, {{}}, "whole", 1, "whole"},
        {"package at the second attempt", false, {{}, "whole"}, "", 2, "whole"},
    };
    for (const auto& expected : cases) {
        journal.clear();
        host.addresses.clear();
        host.packages = expected.downloaded;
        std::filesystem::remove(tool);
        if (expected.isPresent)
            putFile(tool, "the tool");
        putFile(package, expected.left);
        installing.installerCheck();
        Journal commandsRun;
        for (std::size_t attempt = 0; attempt < expected.attempts; ++attempt)
            commandsRun.insert(commandsRun.end(), {"run killall MobileCydia", "run " + install});
        EXPECT_EQ(journal, commandsRun) << expected.what << ", and nobody is told";
        EXPECT_EQ(host.addresses,
                  Journal(expected.attempts, "https://files.example.org/u/1000/Tweaks/Dubrix/"
                                             "com.vorlund.appinst_iphoneos-arm.deb"));
        EXPECT_EQ(contentsOf(package), expected.packageAfter) << expected.what;
    }
}

} // namespace dubrix
