#include "platform/linux/LinuxMonochromeFilter.h"
#include "tests/engine/EngineTest.h"

#include <sys/stat.h>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

PropertyList namesOf(const std::vector<std::string>& names) {
    PropertyList list = PropertyList::array();
    for (const std::string& name : names)
        list.append(PropertyList::string(name));
    return list;
}

PropertyList iconsOf(const PropertyList& files) {
    PropertyList primary = PropertyList::dictionary();
    primary.setValueForKey("CFBundleIconFiles", files);
    PropertyList icons = PropertyList::dictionary();
    icons.setValueForKey("CFBundlePrimaryIcon", primary);
    return icons;
}

} // namespace

/// A staged copy of Example.app; images hold "image" and gain a "+" each time they are tinted.
class IconTintTest : public EngineTest {
protected:
    IconTintTest() {
        chooseSource("com.example.app");
        catalogue.known["com.example.app"] = {"My App", "/var/X/Example.app", "1"};
        fs::create_directories(bundle);
    }
    void stageInfo(const std::vector<std::pair<std::string, PropertyList>>& values) const {
        PropertyList info = PropertyList::dictionary();
        for (const auto& [key, value] : values)
            info.setValueForKey(key, value);
        putFile(bundle / "Info.plist", info.binary());
    }
    void stageImages(const std::vector<std::string>& names) const {
        for (const std::string& name : names)
            putFile(bundle / name, "image");
    }
    /// The staged files that were tinted, each with a "+" for every time.
    std::vector<std::string> tinted() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::recursive_directory_iterator(bundle)) {
            const std::string bytes = entry.is_regular_file() ? contentsOf(entry.path()) : "";
            if (bytes.starts_with("image") && bytes != "image")
                found.push_back(entry.path().lexically_relative(bundle).native() + bytes.substr(5));
        }
        std::ranges::sort(found);
        return found;
    }

    const fs::path bundle = onDevice("/tmp/My App/Payload/Example.app");
};

TEST_F(IconTintTest, FindsTheVariantsOfEachListedName) {
    using Names = std::vector<std::string>;
    const auto empty = namesOf({});
    const auto text = PropertyList::string("Icon");
    PropertyList mixed = PropertyList::array();
    mixed.append(PropertyList::integer(5));
    mixed.append(namesOf({"Icon"}));
    mixed.append(PropertyList::string("Icon-29"));
    const struct {
        const char* what;
        std::vector<std::pair<std::string, PropertyList>> info;
        Names expected;
    } cases[] = {
        {"no list", {{"CFBundleIconFile", text}, {"UILaunchImages", namesOf({"Icon"})}}, {}},
        {"top level",
         {{"CFBundleIconFiles", namesOf({"Icon"})}},
         {"Icon.png+", "Icon@2x.png+", "Icon~ipad.png+"}},
        {"exact name is probed twice",
         {{"CFBundleIconFiles", namesOf({"Icon.png"})}},
         {"Icon.png++"}},
        {"no extension",
         {{"CFBundleIconFiles", namesOf({"Plain"})}},
         {"Plain++", "Plain@2x+", "Plain@2x~ipad+", "Plain@3x+", "Plain@3x~ipad+", "Plain~ipad+"}},
        {"only the primary list",
         {{"CFBundleIcons", iconsOf(namesOf({"Icon-29"}))}},
         {"Icon-29@2x~ipad.png+", "Icon-29@3x.png+", "Icon-29@3x~ipad.png+"}},
        {"listed everywhere",
         {{"CFBundleIconFiles", namesOf({"Icon"})},
          {"CFBundleIcons", iconsOf(namesOf({"Icon", "Icon.png"}))},
          {"CFBundleIcons~ipad", iconsOf(namesOf({"Icon"}))}},
         {"Icon.png+++++", "Icon@2x.png+++", "Icon~ipad.png+++"}},
        {"below a folder", {{"CFBundleIconFiles", namesOf({"deep/Icon"})}}, {"deep/Icon.png+"}},
        {"wrong types",
         {{"CFBundleIconFiles", text},
          {"CFBundleIcons", text},
          {"CFBundleIcons~ipad", iconsOf(mixed)}},
         {"Icon-29@2x~ipad.png+", "Icon-29@3x.png+", "Icon-29@3x~ipad.png+"}},
        {"more wrong types",
         {{"CFBundleIconFiles", empty},
          {"CFBundleIcons", namesOf({"CFBundlePrimaryIcon"})},
          {"CFBundleIcons~ipad", iconsOf(text)}},
         {}},
    };
    for (const auto& scene : cases) {
        stageInfo(scene.info);
        stageImages({"Icon.png", "Icon@2x.png", "Icon~ipad.png", "icon@3x.png", "Icon-29@3x.png",
                     "Icon-29@2x~ipad.png", "Icon-29@3x~ipad.png", "Plain", "Plain@2x", "Plain@3x",
                     "Plain~ipad", "Plain@2x~ipad", "Plain@3x~ipad", "deep/Icon.png"});
        engine.colorIcons();
        EXPECT_EQ(tinted(), scene.expected) << scene.what;
        EXPECT_EQ(entriesOf(journal, "log"), Names()) << scene.what;
    }
}

TEST_F(IconTintTest, ProbesComeInTheirOrderAndTheColorIsReadForEachImage) {
    stageInfo({{"CFBundleIcons", iconsOf(namesOf({"I"}))}, {"CFBundleIconFiles", namesOf({"I"})}});
    // The third image sees other settings than the first two.
    choose({{"bundleID", PropertyList::string("com.example.app")},
            {"Red", PropertyList::real(0.1F)},
            {"Blue", PropertyList::string("1")}});
    filter.afterwards = [this] {
        if (filter.colors.size() == 2)
            chooseSource("com.example.app");
    };
    putFile(bundle / "I@3x", "no image");
    stageImages({"I.png", "I~ipad"});
    engine.colorIcons();
    EXPECT_EQ(filter.colors,
              (std::vector<std::vector<float>>{
                  {0.1F, 0, 1}, {0.1F, 0, 1}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}}));
    EXPECT_EQ(entriesOf(journal, "log"), std::vector<std::string>(2, "Nothing to write"))
        << "one for each list";
    EXPECT_EQ(contentsOf(bundle / "I@3x"), "no image");
}

TEST_F(IconTintTest, WithoutAnInfoPlistNothingHappens) {
    stageImages({"Icon.png"});
    engine.colorIcons();
    putFile(bundle / "Info.plist", "<plist>damaged");
    engine.colorIcons();
    engine.colorImage("Missing.png");
    EXPECT_EQ(filter.colors.size(), 0U);
    EXPECT_EQ(entriesOf(journal, "log"), std::vector<std::string>());
    engine.colorImage("Icon.png");
    EXPECT_EQ(tinted(), std::vector<std::string>{"Icon.png+"});
}

TEST_F(IconTintTest, OnlyFilesOfTheStagedBundleAreTouched) {
    putFile(onDevice("/tmp/outside/Icon.png"), "image");
    putFile(onDevice("/tmp/My App/Payload/Icon.png"), "image");
    putFile(onDevice("/tmp/My App/Payload/Example.appendix/Icon.png"), "image");
    stageImages({"inside/Icon.png"});
    fs::create_symlink("../../../outside", bundle / "folder");
    fs::create_symlink("../../../outside/Icon.png", bundle / "Icon.png");
    fs::create_symlink("inside", bundle / "near");
    fs::create_directory(bundle / "Folder.png");
    stageInfo({{"CFBundleIconFiles",
                namesOf({"../Icon", "../../../outside/Icon", "folder/Icon", "Icon", "/etc/hostname",
                         "../Example.appendix/Icon", "inside/../../Icon.png", "Folder"})}});
    const auto before = device.snapshot();
    engine.colorIcons();
    EXPECT_EQ(device.snapshot(), before);
    EXPECT_EQ(filter.colors.size(), 0U);
    EXPECT_EQ(entriesOf(journal, "log"), std::vector<std::string>{"Nothing to write"})
        << "for the folder, which exists but is no image";

    // What ends inside is taken; a tinted file keeps its permissions.
    fs::permissions(bundle / "inside/Icon.png", fs::perms(0640));
    stageInfo({{"CFBundleIconFiles", namesOf({"inside/../near/Icon"})}});
    engine.colorIcons();
    EXPECT_EQ(tinted(), std::vector<std::string>{"inside/Icon.png+"});
    EXPECT_EQ(fs::status(bundle / "inside/Icon.png").permissions(), fs::perms(0640));
}

TEST_F(IconTintTest, TheRealFilterLeavesPngFiles) {
    const std::string white = contentsOf(SOURCE_ROOT "/resources/PreferencesButton_7@2x.png");
    LinuxMonochromeFilter real;
    LoadedEngine withFilter({commands, files, catalogue, catalogue, real, byteCounts, log}, alerts);
    choose(
        {{"bundleID", PropertyList::string("com.example.app")}, {"Green", PropertyList::real(1)}});
    stageInfo({{"CFBundleIconFiles", namesOf({"Icon"})}});
    putFile(bundle / "Icon@2x.png", white);
    putFile(bundle / "Icon.png", white.substr(0, white.size() / 2));
    withFilter.colorIcons();
    EXPECT_EQ(contentsOf(bundle / "Icon@2x.png"), real.monochromePng(white, 0, 1, 0));
    EXPECT_EQ(contentsOf(bundle / "Icon.png"), white.substr(0, white.size() / 2));
    EXPECT_EQ(entriesOf(journal, "log"), std::vector<std::string>{"Nothing to write"});
}

TEST_F(EngineTest, FolderSizesWrapAtTwoGigabytes) {
    constexpr std::uint64_t twoGiB = std::uint64_t{1} << 31;
    const struct {
        std::vector<std::uint64_t> files;
        const char* text;
    } cases[] = {
        {{}, "Zero KB"},
        {{0, 0}, "Zero KB"},
        {{1}, "1 byte"},
        {{999, 1}, "1 KB"},
        {{twoGiB - 1}, "2.15 GB"},
        {{twoGiB - 1, twoGiB - 1}, "4.29 GB"},
        {{twoGiB}, "-2.15 GB"},
        {{twoGiB, twoGiB - 1}, "-1 byte"},
        {{2 * twoGiB + 5}, "5 bytes"},
    };
    for (const auto& [sizes, text] : cases) {
        const fs::path folder = onDevice("/var/X.app");
        fs::remove_all(folder);
        fs::create_directories(folder);
        for (const std::uint64_t size : sizes) {
            const fs::path file =
                folder / std::to_string(std::distance(fs::directory_iterator(folder), {}));
            putFile(file, "");
            fs::resize_file(file, size); // leaves a hole
        }
        EXPECT_EQ(engine.sizeOfFolder("/var/X.app"), text);
    }
}

TEST_F(EngineTest, FolderSizesMeasureLinksThemselves) {
    const fs::path folder = onDevice("/var/X.app");
    putFile(folder / "big", std::string(5000, 'x'));
    fs::create_directories(onDevice("/var/other"));
    putFile(onDevice("/var/other/big"), std::string(7000, 'x'));
    fs::create_symlink("big", folder / "link");
    fs::create_symlink("../other", folder / "folder");
    fs::create_symlink("..", folder / "loop");
    EXPECT_EQ(engine.sizeOfFolder("/var/X.app/"), byteCounts.stringFromByteCount(5000 + 3 + 8 + 2));
    fs::create_directories(folder / "deep/er");
    putFile(folder / "deep/er/file", "1234567");
    struct stat deep {
    }, deeper{};
    ASSERT_EQ(::stat((folder / "deep").c_str(), &deep), 0);
    ASSERT_EQ(::stat((folder / "deep/er").c_str(), &deeper), 0);
    EXPECT_EQ(engine.sizeOfFolder("/var/X.app"),
              byteCounts.stringFromByteCount(5013 + deep.st_size + deeper.st_size + 7));
    EXPECT_EQ(engine.sizeOfFolder("/var/missing"), "Zero KB");
    EXPECT_EQ(engine.sizeOfFolder("/var/X.app/big"), "Zero KB");
    EXPECT_EQ(entriesOf(journal, "log"),
              std::vector<std::string>(4, "Dubrix - Calculating Folder Size"));
}

} // namespace dubrix
