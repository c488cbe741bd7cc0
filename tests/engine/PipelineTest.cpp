#include "formats/lists/PropertyList.h"
#include "tests/engine/EngineTest.h"

#include <cstdlib>
#include <sys/stat.h>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

constexpr auto source = "com.example.app";

} // namespace

/// The engine on a device whose commands, registry and installer are the real ones. `skipped` is
/// the beginning of a command that fails without having done anything.
class PipelineTest : public EngineTest {
protected:
    PipelineTest() {
        static const std::string path = std::string(PROGRAMS ":") + ::getenv("PATH");
        ::setenv("PATH", path.c_str(), 1);
        ::setenv("ZIPOPT", "-q0y", 1);
        fs::create_directories(onDevice("/tmp"));
        fs::create_directories(onDevice("/var/mobile"));
        fs::current_path(onDevice("/var/mobile"));
        commands.act = [this](const std::string& command) {
            if (skipped.empty() || !command.starts_with(skipped))
                onDevicePlatform.commands.runCommand(command);
        };
    }
    ~PipelineTest() override { fs::current_path("/"); }

    void installSource(const std::string& displayName, const std::string& version = "2.1") {
        PropertyList info =
            *PropertyList::parse("{CFBundleIdentifier = com.example.app; CFBundleDisplayName = \"" +
                                 displayName + "\"; CFBundleVersion = \"" + version +
                                 "\"; CFBundleIconFiles = (Icon);"
                                 "Blob = <0001>; Nested = {CFBundleIdentifier = a;};}");
        info.setValueForKey("MinimumOSVersion", PropertyList::real(9.1));
        std::vector<ZipItem> items{
            {"Info.plist", info.binary()},          {"Icon.png", "image"},
            {"run", "#!/bin/sh", S_IFREG | 0751},   {"a b/'quoted' \\ *", "odd", S_IFREG | 0444},
            {"a b/link", "../run", S_IFLNK | 0777}, {"dangling", "nowhere", S_IFLNK | 0777},
            {".hidden", "", S_IFREG | 0640},        {"empty/", "", S_IFDIR | 0750}};
        for (ZipItem& item : items)
            item.name.insert(0, "Payload/Example.app/");
        ASSERT_TRUE(device.installer().install(device.archive("source.ipa", zipOf(items))));
    }
    /// Everything in an application's bundle but its Info.plist.
    Contents contentsOfBundle(const std::string& identifier) const {
        Contents contents = contentsBelow(device.installed(identifier));
        contents.erase("Info.plist");
        return contents;
    }
    PropertyList infoOf(const std::string& identifier) const {
        const std::string bytes = contentsOf(device.installed(identifier, "Info.plist"));
        EXPECT_TRUE(bytes.starts_with("<?xml ") || identifier == source);
        return PropertyList::parse(bytes).value_or(PropertyList::array());
    }
    /// Runs the pipeline; gives what the overlay says.
    std::string duplicate(const std::string& number) {
        journal.clear();
        onDeviceEngine.duplicateAppWithNumber(number);
        return std::exchange(stage.text, std::nullopt).value_or("");
    }
    bool isStaged() const { return !fs::is_empty(onDevice("/tmp")); }

    PosixPlatform onDevicePlatform{device.root(), DEVICE_PATHS};
    LoadedEngine onDeviceEngine{
        onDevicePlatform.ports({.commands = &commands, .monochrome = &filter, .log = &log}),
        alerts};
    std::string skipped;
};

TEST_F(PipelineTest, ADuplicateDiffersInTwoKeysOnly) {
    installSource("My App");
    chooseSource(source);
    alerts.presenting = [this] {
        EXPECT_TRUE(fs::is_directory(onDevice("/tmp/My App/Payload"))) << "made beforehand";
    };
    stage.whenTold = [this] { EXPECT_TRUE(isStaged()) << "removed after success is told"; };
    const std::string path = *onDevicePlatform.applications.valueForKey("path", source);
    EXPECT_EQ(duplicate("7"), "My App successfully duplicated.");
    EXPECT_EQ(stage.image, "ProgressHUD.bundle/progresshud-success.png");
    EXPECT_EQ(journal, (Journal{"present Dubrix|Cloning My App 7\nPlease wait...\n\n",
                                "run cp -rf '" + path + "' '/tmp/My App/Payload/'",
                                "run cd /tmp/'My App'/ && zip -r 'My App'.ipa *",
                                "run ipainstaller -f /tmp/'My App'/'My App'.ipa", "dismiss"}));
    EXPECT_EQ(alerts.progress.front().spinnerFrame, (Rect{{150, 330}, {20, 20}}));

    PropertyList expected = infoOf(source);
    expected.setValueForKey("CFBundleIdentifier", PropertyList::string("com.example.app7"));
    expected.setValueForKey("CFBundleDisplayName", PropertyList::string("My App 7"));
    EXPECT_EQ(infoOf("com.example.app7"), expected);
    EXPECT_EQ(contentsOfBundle("com.example.app7"), contentsOfBundle(source));
    EXPECT_EQ(contentsOfBundle(source).size(), 8U);
    EXPECT_FALSE(isStaged());
}

TEST_F(PipelineTest, ARebuildAlwaysEndsInSuccess) {
    installSource("Example", "2.0");
    chooseSource(source);
    EXPECT_EQ(duplicate("3"), "Example successfully duplicated.");
    EXPECT_EQ(duplicate("3"), "Example successfully duplicated.");
    EXPECT_TRUE(journal[0].starts_with("present Dubrix|Cloning Example 3\n")) << "not stale";
    installSource("Example", "2.1");

    skipped = "ipainstaller";
    EXPECT_EQ(duplicate("3"), "Example successfully duplicated.");
    EXPECT_EQ(device.versionOf("com.example.app3"), "2.0");
    skipped.clear();
    EXPECT_EQ(duplicate("3"), "Example successfully duplicated.");
    EXPECT_EQ(journal[0], "present Dubrix|Updating Example 3\nto version 2.0\nPlease wait...\n\n");
    EXPECT_EQ(device.versionOf("com.example.app3"), "2.1");
    EXPECT_FALSE(isStaged());
}

TEST_F(PipelineTest, TheDisplayNameFollowsTheChoice) {
    const std::pair<const char*, Text> cases[] = {
        {"customText = Work; customNameToggle = 0;", "Example 12"},
        {"customText = \" W\\U00f6rk & <Play> \"; customNameToggle = 1;", " Wörk & <Play> "},
        {"customText = \"\"; customNameToggle = 1;", ""},
        {"customNameToggle = 1;", std::nullopt}};
    installSource("Example");
    for (const auto& [choice, name] : cases) {
        chooseSource(source, choice);
        EXPECT_EQ(duplicate("12"), "Example successfully duplicated.") << choice;
        const PropertyList info = infoOf("com.example.app12");
        EXPECT_EQ(info.stringForKey("CFBundleDisplayName"), name) << choice;
        EXPECT_EQ(info.keys().size() + (name ? 0 : 1), infoOf(source).keys().size());
    }
}

TEST_F(PipelineTest, AFailureLeavesTheStagingRootForTheNextRun) {
    installSource("Example");
    chooseSource(source);
    const auto before = device.snapshot();
    for (const char* const failing : {"cp ", "cd ", "ipainstaller"}) {
        fs::remove_all(onDevice("/tmp/Example"));
        skipped = failing;
        EXPECT_EQ(duplicate("1"), "Failed to duplicate Example.");
        EXPECT_EQ(stage.image, "ProgressHUD.bundle/progresshud-error.png");
        EXPECT_EQ(entriesOf(journal, "run").size(), 3U) << "each step is tried all the same";
        EXPECT_EQ(journal.back(), "dismiss");
        EXPECT_TRUE(fs::exists(onDevice("/tmp/Example")));
    }
    // What a failed run left is merged into and packed again.
    putFile(onDevice("/tmp/Example/Payload/Example.app/left over"), "old");
    putFile(onDevice("/tmp/Example/Payload/Example.app/run"), "old");
    skipped.clear();
    EXPECT_EQ(duplicate("1"), "Example successfully duplicated.");
    EXPECT_EQ(contentsOf(device.installed("com.example.app1", "left over")), "old");
    EXPECT_EQ(contentsOf(device.installed("com.example.app1", "run")), "#!/bin/sh");
    EXPECT_FALSE(isStaged());
    ASSERT_TRUE(device.installer().uninstall("com.example.app1"));
    EXPECT_TRUE(device.snapshot() == before);
}

TEST_F(PipelineTest, TintsBetweenEditingAndPackingAsWasChosenAtFirst) {
    installSource("Example");
    chooseSource(source, "customColorToggle = 1;");
    const fs::path info = onDevice("/tmp/Example/Payload/Example.app/Info.plist");
    alerts.presenting = [this] {
        chooseSource(source, "customText = Late; customNameToggle = 1;");
    };
    filter.afterwards = [&] {
        const auto edited = PropertyList::parse(contentsOf(info));
        journal.push_back("tint " + edited->stringForKey("CFBundleDisplayName").value_or(""));
    };
    EXPECT_EQ(duplicate("2"), "Example successfully duplicated.");
    ASSERT_EQ(journal.size(), 6U);
    EXPECT_EQ(journal[2], "tint Example 2");
    EXPECT_TRUE(journal[1].starts_with("run cp ") && journal[3].starts_with("run cd "));
    auto expected = contentsOfBundle(source);
    expected["Icon.png"] += "+";
    EXPECT_EQ(contentsOfBundle("com.example.app2"), expected);
}

/// A staged copy of Example.app; images hold "image " and their name, and gain a "+" each time
/// they are tinted.
class IconTintTest : public EngineTest {
protected:
    using Names = std::vector<std::string>;

    IconTintTest() {
        chooseSource("com.example.app");
        catalogue.known["com.example.app"] = {"My App", "/var/X/Example.app", "1"};
        fs::create_directories(bundle);
    }
    void stage(const std::string& info, const Names& images) {
        putFile(bundle / "Info.plist", info);
        for (const std::string& name : images)
            putFile(bundle / name, "image " + name);
        filter.images.clear();
    }
    /// The names of the images as they came to the filter, each with its "+" of before.
    std::string tinted() const {
        std::string text;
        for (const std::string& image : filter.images)
            text += image.substr(image.find(' ') + 1) + " ";
        return text;
    }
    std::vector<std::string> logged() const { return entriesOf(journal, "log"); }

    const fs::path bundle = onDevice("/tmp/My App/Payload/Example.app");
};

TEST_F(IconTintTest, FindsTheVariantsOfEachListedName) {
    const std::string icons = "Icon.png Icon@2x.png Icon~ipad.png ";
    const std::string small = "Icon-29@3x.png Icon-29@2x~ipad.png Icon-29@3x~ipad.png ";
    const struct {
        const char* info;
        std::string images;
    } cases[] = {
        {"{CFBundleIconFile = Icon; UILaunchImages = (Icon);}", ""},
        {"{CFBundleIconFiles = (Missing, Icon);}", icons},
        {"{CFBundleIconFiles = (\"Icon.png\");}", "Icon.png Icon.png+ "}, // probed twice
        {"{CFBundleIconFiles = (Plain);}", "Plain Plain@2x Plain@3x Plain~ipad Plain@2x~ipad "
                                           "Plain@3x~ipad Plain+ "},
        {"{CFBundleIconFiles = (\"deep/Icon\");}", "deep/Icon.png "},
        {"{CFBundleIcons = {CFBundlePrimaryIcon = {CFBundleIconFiles = (\"Icon-29\");};};}", small},
        {"{\"CFBundleIcons~ipad\" = {CFBundlePrimaryIcon = {CFBundleIconFiles = (\"Icon.png\");};};"
         "CFBundleIcons = {CFBundlePrimaryIcon = {CFBundleIconFiles = (\"Icon-29\", Icon);};};"
         "CFBundleIconFiles = (Icon);}",
         icons + small + "Icon.png+ Icon@2x.png+ Icon~ipad.png+ Icon.png++ Icon.png+++ "},
        {"{CFBundleIconFiles = Icon; CFBundleIcons = {CFBundlePrimaryIcon ="
         "{CFBundleIconFiles = (<05>, (Icon), {Icon = Icon;}, \"Icon-29\");};};}",
         small}, // values of other types are passed over
    };
    for (const auto& [info, images] : cases) {
        stage(info, {"Icon.png", "Icon@2x.png", "Icon~ipad.png", "icon@3x.png", "Icon-29@3x.png",
                     "Icon-29@2x~ipad.png", "Icon-29@3x~ipad.png", "Plain", "Plain@2x", "Plain@3x",
                     "Plain~ipad", "Plain@2x~ipad", "Plain@3x~ipad", "deep/Icon.png"});
        engine.colorIcons();
        EXPECT_EQ(tinted(), images) << info;
        EXPECT_EQ(logged(), Names()) << info;
    }
}

TEST_F(IconTintTest, TheColorIsReadForEachImage) {
    chooseSource("com.example.app", "Red = \"0.1\"; Green = \"0.5\"; Blue = \"0.3\";");
    filter.afterwards = [this] {
        if (filter.colors.size() == 2)
            chooseSource("com.example.app");
    };
    stage("{CFBundleIconFiles = (A, B);}", {"A", "B.png"});
    putFile(bundle / "B@3x", "no image");
    engine.colorIcons();
    EXPECT_EQ(filter.colors, (std::vector<std::vector<float>>{
                                 {0.1F, 0.5F, 0.3F}, {0.1F, 0.5F, 0.3F}, {0, 0, 0}, {0, 0, 0}}));
    EXPECT_EQ(logged(), Names{"Nothing to write"});
    EXPECT_EQ(contentsOf(bundle / "B@3x"), "no image");
    filter.afterwards = [this] { fs::remove_all(bundle); };
    engine.colorImage("A");
    EXPECT_EQ(logged(), Names(2, "Nothing to write")) << "there is no place for the result";
    engine.colorImage("A");
    engine.colorIcons(); // without an Info.plist
    EXPECT_EQ(filter.colors.size(), 5U);
    EXPECT_EQ(logged(), Names(2, "Nothing to write"));
}

} // namespace dubrix
