#include "formats/lists/PropertyList.h"
#include "tests/proof/ProofDevice.h"

#include <span>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

const std::string identifier = "com.example.app";

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

TEST(HostileBundle, AWrongTypeCostsOnlyWhatItStandsFor) {
    const PropertyList sound = *PropertyList::parse(
        "{CFBundleIdentifier = com.example.app; CFBundleVersion = 1; CFBundleIconFiles = (Icon);"
        "CFBundleIcons = {CFBundlePrimaryIcon = {CFBundleIconFiles = (\"art/Badge\");};};"
        "\"CFBundleIcons~ipad\" = {CFBundlePrimaryIcon = {CFBundleIconFiles = (Pad);};};}");
    const std::string primary = "CFBundlePrimaryIcon", files = "CFBundleIconFiles";
    const struct {
        std::vector<std::vector<std::string>> places;
        std::string tinted;
    } cases[] = {
        {{{"CFBundleDisplayName"}, {"CFBundleIconFiles"}}, "art/Badge.png Pad.png "},
        {{{"CFBundleName"}, {"CFBundleVersion"}, {"CFBundleIcons"}}, "Icon.png Pad.png "},
        {{{"SBAppTags"}, {"CFBundleURLTypes"}, {"CFBundleIcons~ipad"}, {"CFBundleIcons", primary}},
         "Icon.png "},
        {{{"CFBundleIcons", primary, files}, {"CFBundleIcons~ipad", primary, files}}, "Icon.png "},
    };
    const ProofDevice device;
    const fs::path bundle = device.installed(device.source);
    const std::string icon = contentsOf(bundle / "Icon.png");
    putFile(bundle / "Pad.png", icon);
    for (const auto& [places, tinted] : cases) {
        for (const PropertyList& value : wrongValues()) {
            SCOPED_TRACE(places[0].back() + " = " + value.description().substr(0, 60));
            PropertyList info = sound;
            for (const auto& path : places)
                info = replaced(info, path, value);
            putFile(bundle / "Info.plist", info.xml());
            const auto text = value.stringValue();
            if (text && places[0].back().ends_with("Name")) {
                EXPECT_EQ(device.request(), "Failed to duplicate " + *text + ".");
                EXPECT_EQ(device.registry().identifiers().size(), 1U);
                continue;
            }
            ASSERT_EQ(device.request(), "X successfully duplicated.");
            std::string changed;
            for (const std::string name : {"Icon.png", "art/Badge.png", "Pad.png"})
                if (contentsOf(device.installed(device.duplicate, name)) != icon)
                    changed += name + " ";
            EXPECT_EQ(changed, tinted);
            const auto version = info.valueForKey("CFBundleVersion")->stringValue();
            EXPECT_EQ(device.versionOf(device.duplicate), version.value_or("none"));
            EXPECT_TRUE(device.installer().uninstall(device.duplicate));
        }
    }
}

TEST(HostileBundle, WrongTypesAmongTheSettingsAreNoChoice) {
    const ProofDevice device;
    PropertyList settings = *PropertyList::parse(contentsOf(device.settingsPath()));
    settings.setValueForKey("customNameToggle", PropertyList::boolean(true));
    int number = 0;
    for (const PropertyList& value : wrongValues()) {
        SCOPED_TRACE(value.description().substr(0, 60));
        const auto requestWith = [&](std::initializer_list<const char*> wrong) {
            PropertyList stored = settings;
            for (const char* key : wrong)
                stored.setValueForKey(key, value);
            putFile(device.settingsPath(), stored.xml());
            return device.request();
        };
        EXPECT_EQ(requestWith({"customText", "Red", "Green", "Blue"}), device.success);
        const std::string made = device.source + std::to_string(++number);
        EXPECT_EQ(device.registry().infoOf(made)->displayName, value.stringValue().value_or("X"));
        EXPECT_NE(contentsOf(device.installed(made, "Icon.png")),
                  contentsOf(device.installed(device.source, "Icon.png")));
        EXPECT_EQ(requestWith({"bundleID", "customColorToggle"}),
                  value.stringValue()
                      ? "dubrix: the application that is chosen is not installed: " +
                            *value.stringValue()
                      : "dubrix: no application is chosen in the settings: name one");
    }
    EXPECT_EQ(device.leftovers(), 0);
}

TEST(HostileArchive, ManyEntriesAreReadOnceTooManyNever) {
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
