#include "tests/engine/EngineTest.h"

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
