#include "tests/engine/EngineTest.h"

namespace dubrix {

/// A host of packages that has what the test says.
struct PackageHost final : Downloader {
    explicit PackageHost(const std::vector<Text>& given) : packages(given) {}
    Text dataWithContentsOfURL(const std::string& address) override {
        EXPECT_EQ(address, "https://files.example.org/u/1000/Tweaks/Dubrix/"
                           "com.vorlund.appinst_iphoneos-arm.deb");
        return packages.at(asked++);
    }
    const std::vector<Text> packages; ///< one an attempt
    std::size_t asked = 0;
};

TEST_F(EngineTest, InstallsItsToolWhenItIsMissing) {
    const std::string install = "run dpkg -i /tmp/com.vorlund.appinst_iphoneos-arm.deb";
    const auto tool = onDevice("/usr/bin/appinst");
    const auto package = onDevice("/tmp/com.vorlund.appinst_iphoneos-arm.deb");
    commands.act = [&](const std::string& command) {
        if ("run " + command == install && contentsOf(package) == "whole")
            putFile(tool, "the tool");
    };
    const struct {
        const char* what;
        bool isPresent;
        const char* left;            ///< of an earlier run
        std::vector<Text> downloads; ///< one an attempt
        const char* packageAfter;
    } cases[] = {
        {"present", true, "", {}, ""},
        {"new package in place of the old", false, "old", {"whole"}, "whole"},
        {"no package at all", false, "", {{}, {}}, ""},
        {"useless package left", false, "broken", {{}, {}}, "broken"},
        {"package left", false, "whole", {{}}, "whole"},
        {"package at the second attempt", false, "", {{}, "whole"}, "whole"},
    };
    for (const auto& [what, isPresent, left, downloads, packageAfter] : cases) {
        SCOPED_TRACE(what);
        PackageHost host(downloads);
        journal.clear();
        std::filesystem::remove(tool);
        if (isPresent)
            putFile(tool, "the tool");
        putFile(package, left);
        CloneEngine(posix.ports({.commands = &commands, .log = &log, .downloader = &host}), alerts)
            .installerCheck();
        Journal commandsRun; // and nobody is told
        for (std::size_t attempt = 0; attempt < downloads.size(); ++attempt)
            commandsRun.insert(commandsRun.end(), {"run killall MobileCydia", install});
        EXPECT_EQ(journal, commandsRun);
        EXPECT_EQ(host.asked, downloads.size());
        EXPECT_EQ(contentsOf(package), packageAfter);
    }
}

} // namespace dubrix
