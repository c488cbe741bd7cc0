#include "formats/images/PngEncoding.h"
#include "tests/engine/EngineTest.h"

#include <sys/stat.h>

namespace dubrix {

namespace fs = std::filesystem;

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
        // Values of other types are passed over.
        {"{CFBundleIconFiles = Icon; CFBundleIcons = Icon; \"CFBundleIcons~ipad\" ="
         "{CFBundlePrimaryIcon = {CFBundleIconFiles = (<05>, (Icon), {Icon = Icon;}, \"Icon-29\");"
         "};};}",
         small},
        {"{CFBundleIconFiles = (); CFBundleIcons = {CFBundlePrimaryIcon = Icon;};"
         "\"CFBundleIcons~ipad\" = {CFBundlePrimaryIcon = {CFBundleIconFiles = Icon;};};}",
         ""},
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
    chooseSource("com.example.app", "Red = \"0.1\"; Blue = 1;");
    filter.afterwards = [this] {
        if (filter.colors.size() == 2)
            chooseSource("com.example.app");
    };
    stage("{CFBundleIconFiles = (A, B);}", {"A", "B.png"});
    putFile(bundle / "B@3x", "no image");
    engine.colorIcons();
    EXPECT_EQ(filter.colors,
              (std::vector<std::vector<float>>{{0.1F, 0, 1}, {0.1F, 0, 1}, {0, 0, 0}, {0, 0, 0}}));
    EXPECT_EQ(logged(), Names{"Nothing to write"});
    EXPECT_EQ(contentsOf(bundle / "B@3x"), "no image");
}

TEST_F(IconTintTest, WithoutAnInfoPlistNothingHappens) {
    stage("<plist>damaged", {"Icon.png"});
    engine.colorIcons();
    fs::remove(bundle / "Info.plist");
    engine.colorIcons();
    engine.colorImage("Missing.png");
    EXPECT_EQ(tinted(), "");
    EXPECT_EQ(logged(), Names());
    engine.colorImage("Icon.png");
    EXPECT_EQ(contentsOf(bundle / "Icon.png"), "image Icon.png+");
}

TEST_F(IconTintTest, OnlyFilesOfTheStagedBundleAreTouched) {
    for (const char* const path : {"outside/Icon.png", "My App/Payload/Icon.png",
                                   "My App/Payload/Example.appendix/Icon.png"})
        putFile(onDevice("/tmp") / path, "image");
    fs::create_symlink("../../../outside", bundle / "folder");
    fs::create_symlink("../../../outside/Icon.png", bundle / "Icon.png");
    fs::create_symlink("inside", bundle / "near");
    fs::create_directory(bundle / "Folder.png");
    stage("{CFBundleIconFiles = (\"../Icon\", \"../../../outside/Icon\", \"folder/Icon\", Icon,"
          "\"/etc/hostname\", \"../Example.appendix/Icon\", \"inside/../../Icon.png\", Folder);}",
          {"inside/Icon.png"});
    const auto before = device.snapshot();
    engine.colorIcons();
    EXPECT_EQ(device.snapshot(), before);
    EXPECT_EQ(tinted(), "");
    EXPECT_EQ(logged(), Names{"Nothing to write"}) << "Folder.png exists, but is no image";

    // What ends inside is taken; a tinted file keeps its permissions.
    stage("{CFBundleIconFiles = (\"inside/../near/Icon\");}", {"inside/Icon.png"});
    fs::permissions(bundle / "inside/Icon.png", fs::perms(0640));
    engine.colorIcons();
    EXPECT_EQ(contentsOf(bundle / "inside/Icon.png"), "image inside/Icon.png+");
    EXPECT_EQ(fs::status(bundle / "inside/Icon.png").permissions(), fs::perms(0640));
}

TEST_F(IconTintTest, TheRealFilterLeavesPngFiles) {
    const PosixMonochromeFilter& real = posix.monochrome;
    others.monochrome = nullptr;
    LoadedEngine withFilter(posix.ports(others), alerts);
    chooseSource("com.example.app", "Green = 1;");
    stage("{CFBundleIconFiles = (Icon);}", {});
    const std::string png = contentsOf(SOURCE_ROOT "/resources/PreferencesButton_7@2x.png");
    putFile(bundle / "Icon@2x.png", png);
    putFile(bundle / "Icon.png", png.substr(0, png.size() / 2));
    withFilter.colorIcons();
    ASSERT_TRUE(real.monochromePng(png, 0, 1, 0).has_value());
    EXPECT_EQ(contentsOf(bundle / "Icon@2x.png"), real.monochromePng(png, 0, 1, 0));
    EXPECT_EQ(contentsOf(bundle / "Icon.png"), png.substr(0, png.size() / 2));
    EXPECT_EQ(logged(), Names{"Nothing to write"});
}

TEST_F(IconTintTest, EveryWayOfMentioningAFileGivesTheSameBytes) {
    const PosixMonochromeFilter& real = posix.monochrome;
    others.monochrome = nullptr;
    LoadedEngine withFilter(posix.ports(others), alerts);
    chooseSource("com.example.app", "Red = \"0.8\"; Green = \"0.2\"; Blue = \"0.4\";");
    RgbaImage white(4, 4);
    std::fill_n(white.bytes.get(), white.pixelCount() * RgbaImage::pixelSize, std::uint8_t{255});
    const std::string png = encodePng(white).value_or("");
    const std::string once = real.monochromePng(png, 0.8F, 0.2F, 0.4F).value_or("");
    const std::string primary = "{CFBundlePrimaryIcon = {CFBundleIconFiles = ";
    for (const std::string& list :
         {std::string("(Icon)"), std::string("(\"Icon@2x\")"), std::string("(\"Icon@2x.png\")"),
          std::string("(Icon, Icon)"), std::string("(\"Icon@2x.png\", Icon, \"Icon@2x\")")}) {
        const std::string all = "CFBundleIcons = " + primary + list +
                                ";};}; \"CFBundleIcons~ipad\" = " + primary + list + ";};};";
        for (const std::string& info : {"{CFBundleIconFiles = " + list + ";}", "{" + all + "}",
                                        "{CFBundleIconFiles = " + list + ";" + all + "}"}) {
            stage(info, {});
            putFile(bundle / "Icon@2x.png", png);
            withFilter.colorIcons();
            EXPECT_TRUE(contentsOf(bundle / "Icon@2x.png") == once) << info;
        }
    }
    EXPECT_EQ(logged(), Names());
}

TEST_F(EngineTest, FolderSizesWrapAtTwoGigabytes) {
    constexpr std::uint64_t twoGiB = std::uint64_t{1} << 31;
    const fs::path folder = onDevice("/var/X.app");
    const std::pair<std::vector<std::uint64_t>, const char*> cases[] = {
        {{}, "Zero KB"},
        {{1}, "1 byte"},
        {{999, 1}, "1 KB"},
        {{twoGiB - 1, twoGiB - 1}, "4.29 GB"},
        {{twoGiB}, "-2.15 GB"},
        {{twoGiB, twoGiB - 1}, "-1 byte"},
        {{2 * twoGiB + 5}, "5 bytes"},
    };
    for (const auto& [sizes, text] : cases) {
        fs::remove_all(folder);
        fs::create_directories(folder);
        for (std::size_t index = 0; index < sizes.size(); ++index) {
            putFile(folder / std::to_string(index), "");
            fs::resize_file(folder / std::to_string(index), sizes[index]); // leaves a hole
        }
        EXPECT_EQ(engine.sizeOfFolder("/var/X.app"), text);
    }
}

TEST_F(EngineTest, FolderSizesMeasureLinksThemselves) {
    const fs::path folder = onDevice("/var/X.app");
    putFile(folder / "big", std::string(500, 'x'));
    putFile(onDevice("/var/other/big"), std::string(70, 'x'));
    fs::create_symlink("big", folder / "link");
    fs::create_symlink("../other", folder / "folder");
    fs::create_symlink("..", folder / "loop");
    EXPECT_EQ(engine.sizeOfFolder("/var/X.app/"), std::to_string(500 + 3 + 8 + 2) + " bytes");
    putFile(folder / "deep/file", "1234567");
    struct stat deep{};
    ASSERT_EQ(::stat((folder / "deep").c_str(), &deep), 0);
    EXPECT_EQ(engine.sizeOfFolder("/var/X.app"),
              posix.byteCounts.stringFromByteCount(513 + deep.st_size + 7));
    EXPECT_EQ(engine.sizeOfFolder("/var/missing"), "Zero KB");
    EXPECT_EQ(engine.sizeOfFolder("/var/X.app/big"), "Zero KB");
    EXPECT_EQ(journal, Journal(4, "log Dubrix - Calculating Folder Size"));
}

} // namespace dubrix
