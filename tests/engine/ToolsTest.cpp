#include "formats/lists/PropertyList.h"
#include "tests/engine/EngineTest.h"

namespace dubrix {

namespace fs = std::filesystem;

TEST_F(EngineTest, ASettingKeepsOneValueAndAllOthers) {
    DXShared store(files, log);
    EXPECT_EQ(store.retrieveValueForKey("bundleID"), std::nullopt);
    const auto before = device.snapshot();
    store.addKey("Red", PropertyList::real(1)); // there is no such folder
    EXPECT_EQ(std::exchange(journal, {}), Journal{"log Adding Object: 1 - For Key Red"});
    EXPECT_EQ(device.snapshot(), before);

    fs::create_directories(settingsPath().parent_path());
    store.addKey("bundleID", PropertyList::string("com.example.app"));
    PropertyList expected = PropertyList::dictionary();
    expected.setValueForKey("bundleID", PropertyList::string("com.example.app"));
    EXPECT_EQ(PropertyList::parse(contentsOf(settingsPath())), expected);
    EXPECT_TRUE(contentsOf(settingsPath()).starts_with("<?xml "));
    EXPECT_EQ(journal, (Journal{"log Adding Object: com.example.app - For Key bundleID",
                                "log Wrote to file successfully"}));

    // Another program's values, in another form of the file.
    expected.setValueForKey("theirs", PropertyList::data(std::string("\0\xff", 2)));
    putFile(settingsPath(), expected.binary());
    DXShared another(files, log);
    another.addKey("customNameToggle", PropertyList::boolean(true));
    another.addKey("Red", PropertyList::real(0.1F));
    store.addKey("customNameToggle", PropertyList::boolean(false));
    expected.setValueForKey("customNameToggle", PropertyList::boolean(false));
    expected.setValueForKey("Red", PropertyList::real(0.1F));
    EXPECT_EQ(PropertyList::parse(contentsOf(settingsPath())), expected);
    EXPECT_EQ(store.retrieveValueForKey("Red")->floatValue(), 0.1F);
    EXPECT_EQ(another.retrieveValueForKey("CustomNameToggle"), std::nullopt);
    EXPECT_EQ(std::distance(fs::directory_iterator(settingsPath().parent_path()), {}), 1);

    for (const std::string& bytes : // what is damaged stays so, byte for byte
         {std::string("<plist><dict><key>a</key>"), std::string(), std::string("bplist00\0\0", 10),
          PropertyList::array().xml(), PropertyList::array().binary()}) {
        putFile(settingsPath(), bytes);
        journal.clear();
        store.addKey("Red", PropertyList::real(1));
        EXPECT_EQ(contentsOf(settingsPath()), bytes);
        EXPECT_EQ(store.retrieveValueForKey("Red"), std::nullopt);
        EXPECT_EQ(journal, Journal());
    }
}

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

TEST(Text, FillsPlaceholdersInTheirOrder) {
    EXPECT_EQ(stringWithFormat("%@ is %d%% of %ld, %f", Text(), -1, 7, 0.25),
              "(null) is -1%% of 7, 0.250000");
    EXPECT_EQ(stringWithFormat("%@%@", "%d", "%@"), "%d%@") << "values are not formats";
    EXPECT_EQ(stringWithFormat("%@ %@", 5), "5 %@");
}

TEST(Text, TakesBundleNamesFromPaths) {
    for (const auto& [path, name] : {std::pair("/a.b/Example.app", "Example"),
                                     {"/a/My App.app//", "My App"},
                                     {"/a/One.Two.app", "One.Two"},
                                     {"/a/.app", ".app"},
                                     {"/", ""}})
        EXPECT_EQ(lastPathComponentWithoutExtension(path), name);
}

} // namespace dubrix
