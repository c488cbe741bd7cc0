#include "formats/lists/PropertyList.h"
#include "tests/engine/EngineTest.h"
#include "tests/formats/ImageFiles.h"
#include "tests/proof/PrivateMounts.h"
#include "tests/proof/ProofDevice.h"

#include <span>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

const std::string identifier = "com.example.app";
const std::vector<std::string> icons{"Top.png", "Primary.png", "Pad.png"};

/// One value of each type, all wrong where a list of names or a dictionary of icons is meant; the
/// first is right where a string is.
std::vector<PropertyList> wrongValues() {
    return {
        PropertyList::string("%@%d%s/../" + std::string(10'000, 'x')),
        PropertyList::boolean(true),
        PropertyList::integer(INT64_MIN),
        PropertyList::real(1e300),
        PropertyList::data(std::string("\0\xff", 2)),
        *PropertyList::parse("<plist><date>2020-02-30T00:00:00Z</date></plist>"),
        *PropertyList::parse("<plist><array><array><integer>-7</integer></array></array></plist>"),
        *PropertyList::parse("{\"\" = ({}, ());}")};
}

/// `path` of keys in `dictionary` set to `value`.
PropertyList replaced(PropertyList dictionary, std::span<const std::string> path,
                      const PropertyList& value) {
    const auto below = dictionary.valueForKey(path[0]).value_or(PropertyList::dictionary());
    dictionary.setValueForKey(path[0],
                              path.size() == 1 ? value : replaced(below, path.subspan(1), value));
    return dictionary;
}

} // namespace

/// A device with one application, staged as the pipeline does it, and the engine over it.
class HostileBundle : public EngineTest {
protected:
    HostileBundle() {
        EXPECT_TRUE(device.installer().install(device.application(identifier, "1")));
    }

    /// Gives the application this Info.plist, installed and staged.
    void put(const PropertyList& info) {
        putFile(device.installed(identifier, "Info.plist"), info.xml());
        // A name may be longer than the file system allows.
        if (std::error_code error; !fs::create_directories(bundle(), error) && error)
            return;
        putFile(bundle() / "Info.plist", info.xml());
        for (const std::string& icon : icons)
            putFile(bundle() / icon, image);
    }
    fs::path bundle() {
        return device.root() / "tmp" / real.nameForBundleID(identifier).value_or("") /
               "Payload/X.app";
    }

    std::vector<std::string> tinted() {
        std::vector<std::string> names;
        real.colorIcons();
        for (const std::string& icon : icons)
            if (const std::string now = contentsOf(bundle() / icon); !now.empty() && now != image)
                names.push_back(icon);
        return names;
    }

    const std::string image = pngOf(samplePixels(21 * 11), 21);
    const PropertyList soundInfo = *PropertyList::parse(
        "{CFBundleIdentifier = com.example.app; CFBundleVersion = 1; CFBundleIconFiles = (Top);"
        "CFBundleIcons = {CFBundlePrimaryIcon = {CFBundleIconFiles = (Primary);};};"
        "\"CFBundleIcons~ipad\" = {CFBundlePrimaryIcon = {CFBundleIconFiles = (Pad);};};}");
    const PropertyList soundSettings =
        *PropertyList::parse("{bundleID = com.example.app; Green = \"0.5\";}");
    LoadedEngine real{posix.ports({.log = &log, .downloader = &downloader}), alerts};
};

TEST_F(HostileBundle, AWrongTypeCostsOnlyWhatItStandsFor) {
    const struct {
        std::vector<std::string> path;
        std::string breaks;
    } places[] = {
        {{"CFBundleDisplayName"}, ""},
        {{"CFBundleName"}, ""},
        {{"CFBundleVersion"}, "version"},
        {{"SBAppTags"}, ""},
        {{"CFBundleURLTypes"}, ""},
        {{"CFBundleIconFiles"}, "Top.png"},
        {{"CFBundleIcons"}, "Primary.png"},
        {{"CFBundleIcons", "CFBundlePrimaryIcon"}, "Primary.png"},
        {{"CFBundleIcons", "CFBundlePrimaryIcon", "CFBundleIconFiles"}, "Primary.png"},
        {{"CFBundleIcons~ipad"}, "Pad.png"},
        {{"CFBundleIcons~ipad", "CFBundlePrimaryIcon", "CFBundleIconFiles"}, "Pad.png"},
    };
    choose(soundSettings.xml());
    for (const auto& [path, breaks] : places) {
        for (const PropertyList& value : wrongValues()) {
            SCOPED_TRACE(path.back() + " = " + value.description().substr(0, 60));
            put(replaced(soundInfo, path, value));
            const bool isText = value.stringValue().has_value();
            EXPECT_EQ(real.versionForBundleID(identifier).has_value(),
                      breaks != "version" || isText);
            const bool named = isText && path.back().ends_with("Name");
            EXPECT_EQ(real.nameForBundleID(identifier), named ? value.stringValue() : "X");
            std::vector<std::string> expected = icons;
            std::erase(expected, breaks);
            EXPECT_EQ(tinted(), named ? std::vector<std::string>{} : expected);
            EXPECT_EQ(posix.applications.entries().size(), 2u);
        }
    }
}

TEST_F(HostileBundle, WrongTypesAmongTheSettingsAreNoChoice) {
    for (const std::string key : {"bundleID", "Red", "Green", "Blue"}) {
        for (const PropertyList& value : wrongValues()) {
            SCOPED_TRACE(key + " = " + value.description().substr(0, 60));
            put(soundInfo);
            choose(replaced(soundSettings, std::span(&key, 1), value).xml());
            EXPECT_EQ(tinted(), key == "bundleID" ? std::vector<std::string>{} : icons);
            real.showUpdateAlert();
            const std::string said = key != "bundleID"     ? "No duplicates for this app"
                                     : value.stringValue() ? "Please select an app from the list"
                                                           : "The selected app is not installed";
            EXPECT_EQ(alerts.current->message.value_or("").substr(0, said.size()), said);
        }
    }
    // And through the whole pipeline.
    const ProofDevice whole;
    PropertyList settings = *PropertyList::parse(contentsOf(whole.settingsPath()));
    settings.setValueForKey("customNameToggle", PropertyList::boolean(true));
    int number = 0;
    for (const PropertyList& value : wrongValues()) {
        SCOPED_TRACE(value.description().substr(0, 60));
        settings.setValueForKey("customText", value);
        settings.setValueForKey("customColorToggle", value);
        putFile(whole.settingsPath(), settings.xml());
        EXPECT_EQ(whole.request(), whole.success);
        const auto info = whole.registry().infoOf(whole.source + std::to_string(++number));
        ASSERT_TRUE(info);
        EXPECT_EQ(info->displayName, value.stringValue().value_or("X"));
    }
    EXPECT_EQ(whole.leftovers(), 0);
}

TEST(HostileArchive, ManyEntriesAreReadOnceAndRefusedWhenTheyRepeat) {
    const DeviceFolder device;
    // The only sizes in 64 bits are the last entry's, whose one byte is the gap.
    const std::uint32_t checksumOfGap = 0xd202ef8d;
    const auto install = [&](int count, const std::function<std::string(int)>& name) {
        std::vector<ZipItem> items{{"Payload/X.app/Info.plist", infoPlist(identifier)}};
        for (int number = 0; number < count; ++number)
            items.push_back({name(number), ""});
        items.push_back({"last", "", S_IFREG | 0644, 0, 0, 3, {}, checksumOfGap});
        const ZipBytes zip = zipWithHole(items, 1);
        const auto result = device.installer().install(
            device.archive("many.ipa", zip.head + std::string(1, '\0') + zip.tail));
        return result ? "" : result.failure().text;
    };
    ASSERT_EQ(install(99'990,
                      [](int number) {
                          return (number % 1000 == 0 ? "Payload/X.app/a" : "__MACOSX/") +
                                 std::to_string(number);
                      }),
              "");
    EXPECT_EQ(std::distance(fs::directory_iterator(device.installed(identifier)), {}), 101);
    const auto before = device.snapshot();
    EXPECT_EQ(
        install(10'000, [](int number) { return "Payload/X.app/a" + std::to_string(number / 2); }),
        "many.ipa: holds Payload/X.app/a0 twice");
    const std::string tooMany = "many.ipa: has too many entries";
    EXPECT_EQ(install(100'000, [](int number) { return std::to_string(number); }), tooMany);
    std::string folders;
    for (int level = 0; level < 90; ++level)
        folders += "/a";
    EXPECT_EQ(install(1'200,
                      [&](int number) {
                          return "Payload/X.app/" + std::to_string(number) + folders + "/file";
                      }),
              tooMany);
    EXPECT_TRUE(device.snapshot() == before);
}

TEST(HostileArchive, ABombIsRefusedBeforeItGoesOff) {
    if (!PrivateMounts::permitted())
        GTEST_SKIP() << "mounting is not permitted here";
    const DeviceFolder device;
    fs::create_directories(device.root() / "var");
    PrivateMounts mounts;
    ASSERT_TRUE(mounts.small(device.root() / "var", 3'000'000));
    ASSERT_TRUE(device.installer().install(device.application(identifier, "1")));
    const auto before = device.snapshot();
    std::vector<ZipItem> bomb;
    for (int number = 0; number < 20; ++number)
        bomb.push_back({std::to_string(number), std::string(1'000'000, '\0'), S_IFREG | 0644, 8});
    for (const bool lies : {false, true}) {
        // One that lies about its size stops at the size it claims.
        for (ZipItem& item : bomb)
            item.claimedSize = lies ? 10 : item.data.size();
        const auto refused = device.installer().install(device.application(identifier, "2", bomb));
        ASSERT_FALSE(refused);
        // Before: a disk that is full while it unpacks is told with the file.
        const std::string reason = lies ? "is damaged at " : "not enough room on the device";
        EXPECT_EQ(refused.failure().text.rfind("com.example.app-2.ipa: " + reason, 0), 0U)
            << refused.failure().text;
        EXPECT_TRUE(device.snapshot() == before);
    }
}

} // namespace dubrix
