#include "formats/lists/PropertyList.h"
#include "tests/proof/PrivateMounts.h"
#include "tests/proof/ProofDevice.h"
#include "tests/proof/RealPlatform.h"

namespace dubrix {

namespace fs = std::filesystem;

namespace {

/// One value of each type, all wrong where a string, a list of names or a dictionary of icons is
/// meant; where a string is meant, `isText` tells the one that is right.
struct WrongValue {
    PropertyList value;
    bool isText = false;
};

std::vector<WrongValue> wrongValues() {
    PropertyList numbers = PropertyList::array(), nested = PropertyList::array();
    numbers.append(PropertyList::integer(-7));
    nested.append(numbers);
    nested.append(PropertyList::dictionary());
    PropertyList odd = PropertyList::dictionary();
    odd.setValueForKey("", nested);
    return {{PropertyList::boolean(true)},
            {PropertyList::integer(INT64_MIN)},
            {PropertyList::real(1e300)},
            {PropertyList::string("%@%d%s/../" + std::string(10'000, 'x')), true},
            {PropertyList::data(std::string("\0\xff", 2))},
            {*PropertyList::parse("<plist><date>2020-02-30T00:00:00Z</date></plist>")},
            {numbers},
            {nested},
            {odd}};
}

PropertyList listOf(const std::string& name) {
    PropertyList list = PropertyList::array();
    list.append(PropertyList::string(name));
    return list;
}

PropertyList within(const std::string& key, const PropertyList& value) {
    PropertyList dictionary = PropertyList::dictionary();
    dictionary.setValueForKey(key, value);
    return dictionary;
}

/// `path` of keys in `dictionary` set to `value`.
PropertyList replaced(PropertyList dictionary, std::span<const std::string> path,
                      const PropertyList& value) {
    const auto below = dictionary.valueForKey(path[0]).value_or(PropertyList::dictionary());
    dictionary.setValueForKey(path[0],
                              path.size() == 1 ? value : replaced(below, path.subspan(1), value));
    return dictionary;
}

const std::vector<std::string> icons{"Top.png", "Primary.png", "Pad.png"};

PropertyList soundInfo(const std::string& identifier) {
    PropertyList info = *PropertyList::parse(infoPlist(identifier));
    info.setValueForKey("CFBundleIconFiles", listOf("Top"));
    info.setValueForKey("CFBundleIcons", within("CFBundlePrimaryIcon",
                                                within("CFBundleIconFiles", listOf("Primary"))));
    info.setValueForKey("CFBundleIcons~ipad",
                        within("CFBundlePrimaryIcon", within("CFBundleIconFiles", listOf("Pad"))));
    return info;
}

/// A device with one application, staged as the pipeline does it, and the engine over it.
struct Staged {
    explicit Staged(const PropertyList& info, const PropertyList& settings) {
        const ZipItem file{"Payload/X.app/Info.plist", info.xml()};
        EXPECT_TRUE(device.installer().install(device.archive("x.ipa", zipOf({file}))));
        putFile(device.root() / (settingsFilePath + 1), settings.xml());
        bundle = device.root() / "tmp" /
                 real.engine.nameForBundleID("com.example.app").value_or("") / "Payload/X.app";
        // A name may be longer than the file system allows.
        if (std::error_code error; !fs::create_directories(bundle, error))
            return;
        putFile(bundle / "Info.plist", info.xml());
        for (const std::string& icon : icons)
            putFile(bundle / icon, image);
    }

    std::vector<std::string> tinted() {
        std::vector<std::string> names;
        real.engine.colorIcons();
        for (const std::string& icon : icons)
            if (const std::string now = contentsOf(bundle / icon); !now.empty() && now != image)
                names.push_back(icon);
        return names;
    }

    const std::string image = SamplePng({PNG_COLOR_TYPE_RGB, 8, false, false}).bytes();
    DeviceFolder device;
    RealEngine real{device.root(), ""};
    fs::path bundle;
};

PropertyList soundSettings() {
    PropertyList settings = within("bundleID", PropertyList::string("com.example.app"));
    settings.setValueForKey("Green", PropertyList::real(0.5));
    return settings;
}

} // namespace

TEST(HostileBundle, AWrongTypeCostsOnlyWhatItStandsFor) {
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
    for (const auto& [path, breaks] : places) {
        for (const auto& [value, isText] : wrongValues()) {
            SCOPED_TRACE(path.back() + " = " + value.description().substr(0, 60));
            Staged staged(replaced(soundInfo("com.example.app"), path, value), soundSettings());
            EXPECT_EQ(staged.real.engine.versionForBundleID("com.example.app").has_value(),
                      breaks != "version" || isText);
            const bool named = isText && path.back().ends_with("Name");
            EXPECT_EQ(staged.real.engine.nameForBundleID("com.example.app"),
                      named ? value.stringValue() : "X");
            std::vector<std::string> expected = icons;
            std::erase(expected, breaks);
            EXPECT_EQ(staged.tinted(), named ? std::vector<std::string>{} : expected);
            EXPECT_EQ(staged.real.posix.applications.entries().size(), 2u);
        }
    }
}

TEST(HostileBundle, WrongTypesAmongTheSettingsAreNoChoice) {
    for (const std::string key : {"bundleID", "Red", "Green", "Blue"}) {
        for (const auto& [value, isText] : wrongValues()) {
            SCOPED_TRACE(key + " = " + value.description().substr(0, 60));
            PropertyList settings = soundSettings();
            settings.setValueForKey(key, value);
            Staged staged(soundInfo("com.example.app"), settings);
            EXPECT_EQ(staged.tinted(), key == "bundleID" ? std::vector<std::string>{} : icons);
            staged.real.engine.showUpdateAlert();
            EXPECT_EQ(staged.real.alerts.said, key != "bundleID" ? "No duplicates for this app"
                                               : isText ? "Please select an app from the list"
                                                        : "The selected app is not installed");
        }
    }
}

TEST(HostileBundle, WrongTypesPassThroughThePipeline) {
    const ProofDevice device;
    const PropertyList sound = *PropertyList::parse(contentsOf(device.settingsPath()));
    int number = 0;
    for (const auto& [value, isText] : wrongValues()) {
        SCOPED_TRACE(value.description().substr(0, 60));
        PropertyList settings = sound;
        settings.setValueForKey("customNameToggle", PropertyList::boolean(true));
        settings.setValueForKey("customText", value);
        settings.setValueForKey("customColorToggle", value);
        putFile(device.settingsPath(), settings.xml());
        EXPECT_EQ(device.request().output, device.success);
        const auto info = device.registry().infoOf(device.source + std::to_string(++number));
        ASSERT_TRUE(info);
        EXPECT_EQ(info->displayName, isText ? value.stringValue() : "X");
    }
    EXPECT_EQ(device.leftovers(), 0);
}

TEST(HostileBundle, ManyEntriesAreReadOnceAndRefusedWhenTheyRepeat) {
    const DeviceFolder device;
    // The only sizes in 64 bits are the last entry's, whose one byte is the gap.
    const std::uint32_t checksumOfGap = 0xd202ef8d;
    const auto install = [&](int count, const std::function<std::string(int)>& name) {
        std::vector<ZipItem> items{{"Payload/X.app/Info.plist", infoPlist("com.example.app")}};
        for (int number = 0; number < count; ++number)
            items.push_back({name(number), ""});
        items.push_back({"last", "", S_IFREG | 0644, 0, 0, 3, {}, checksumOfGap});
        const ZipBytes zip = zipWithHole(items, 1);
        return device.installer().install(
            device.archive("many.ipa", zip.head + std::string(1, '\0') + zip.tail));
    };
    const auto beside = install(99'990, [](int number) {
        return (number % 1000 == 0 ? "Payload/X.app/a" : "__MACOSX/") + std::to_string(number);
    });
    ASSERT_TRUE(beside) << beside.failure().text;
    EXPECT_EQ(std::distance(fs::directory_iterator(device.installed("com.example.app")), {}), 101);
    const auto before = device.snapshot();
    const auto again =
        install(99'990, [](int number) { return "Payload/X.app/a" + std::to_string(number / 2); });
    ASSERT_FALSE(again);
    EXPECT_NE(again.failure().text.find("twice"), std::string::npos) << again.failure().text;
    const auto more = install(100'000, [](int number) { return std::to_string(number); });
    ASSERT_FALSE(more);
    EXPECT_NE(more.failure().text.find("too many"), std::string::npos) << more.failure().text;
    std::string folders;
    for (int level = 0; level < 90; ++level)
        folders += "/a";
    const auto implied = install(1'200, [&](int number) {
        return "Payload/X.app/" + std::to_string(number) + folders + "/file";
    });
    ASSERT_FALSE(implied);
    EXPECT_NE(implied.failure().text.find("too many"), std::string::npos) << implied.failure().text;
    EXPECT_TRUE(device.snapshot() == before);
}

TEST(HostileBundle, ABombIsRefusedBeforeItGoesOff) {
    if (!PrivateMounts::permitted())
        GTEST_SKIP() << "mounting is not permitted here";
    const DeviceFolder device;
    fs::create_directories(device.root() / "var");
    PrivateMounts mounts;
    ASSERT_TRUE(mounts.small(device.root() / "var", 3'000'000));
    ASSERT_TRUE(device.installer().install(device.application("com.example.app", "1")));
    const auto before = device.snapshot();
    const std::string zeros(1'000'000, '\0');
    std::vector<ZipItem> bomb;
    for (int number = 0; number < 20; ++number)
        bomb.push_back({std::to_string(number), zeros, S_IFREG | 0644, 8});
    const auto refused =
        device.installer().install(device.application("com.example.app", "2", bomb));
    ASSERT_FALSE(refused);
    EXPECT_NE(refused.failure().text.find("not enough room"), std::string::npos);
    EXPECT_TRUE(device.snapshot() == before);

    // One that lies about its size stops at the size it claims.
    for (ZipItem& item : bomb)
        item.claimedSize = 10;
    const auto liar = device.installer().install(device.application("com.example.app", "2", bomb));
    ASSERT_FALSE(liar);
    EXPECT_NE(liar.failure().text.find("is damaged"), std::string::npos) << liar.failure().text;
    EXPECT_TRUE(device.snapshot() == before);
}

} // namespace dubrix
