#include "formats/images/BundleIcons.h"
#include "formats/lists/PropertyList.h"
#include "tests/formats/ImageFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace dubrix {

namespace fs = std::filesystem;

class BundleIconsTest : public testing::Test {
protected:
    /// As much of a PNG as the search looks at.
    static std::string png(std::uint32_t width, std::uint32_t height) {
        std::string file(pngSignature);
        appendPngChunk(file, "IHDR", PngHeader{width, height}.chunkData());
        return file;
    }
    using Icon = std::pair<const char*, std::uint32_t>;
    /// Nothing but icons of these names, before their extension, and these edges.
    void put(const std::vector<Icon>& icons) const {
        fs::remove_all(bundle);
        for (const auto& [name, edge] : icons)
            putFile(bundle / (std::string(name) + ".png"), png(edge, edge));
    }
    std::string found(const std::string& info, unsigned pixels) const {
        std::string names;
        for (const fs::path& file : iconFilesOfBundle(bundle, *PropertyList::parse(info), pixels))
            names += (names.empty() ? "" : " ") + file.lexically_relative(bundle).string();
        return names;
    }

    TemporaryFolder folder;
    fs::path bundle = fs::canonical(folder.path()) / "Some.app";
};

TEST_F(BundleIconsTest, OrdersTheVariantsByWhatFillsTheSquare) {
    const std::vector<Icon> many{
        {"A@2x", 58}, {"A@3x", 87}, {"B@2x", 120}, {"C@2x~ipad", 167}, {"A~ipad", 29}};
    const struct {
        std::vector<Icon> icons;
        unsigned pixels;
        const char* order;
    } cases[] = {
        {many, 29, "B@2x.png C@2x~ipad.png A~ipad.png A@2x.png A@3x.png"},
        {many, 58, "B@2x.png C@2x~ipad.png A@2x.png A@3x.png A~ipad.png"},
        {many, 100, "B@2x.png C@2x~ipad.png A@3x.png A@2x.png A~ipad.png"},
        {many, 500, "C@2x~ipad.png B@2x.png A@3x.png A@2x.png A~ipad.png"},
        // 120 pixels are 40 or 60 points, 60 are 20 or 60.
        {{{"A@3x", 120}, {"B@2x", 120}}, 120, "B@2x.png A@3x.png"},
        {{{"A@3x", 60}, {"B", 60}, {"C@2x", 80}}, 58, "B.png A@3x.png C@2x.png"},
        {{{"A", 120}, {"B", 180}, {"C", 80}}, 58, "A.png B.png C.png"},
        {{{"A@2x", 120}, {"B@3x", 180}, {"C@3x", 120}}, 180, "B@3x.png A@2x.png C@3x.png"},
        {{{"A@2x", 114}, {"B@2x", 80}, {"C@2x", 58}}, 58, "A@2x.png C@2x.png B@2x.png"},
        {{{"A@2x~ipad", 80}, {"B@2x~ipad", 152}, {"C@2x~ipad", 144}},
         76,
         "C@2x~ipad.png B@2x~ipad.png A@2x~ipad.png"},
        {{{"A@2x~iphone", 120}, {"A~ipad", 76}}, 58, "A@2x~iphone.png A~ipad.png"},
        {{{"A@2x~ipad", 120}, {"B@2x~ipad", 152}}, 87, "B@2x~ipad.png A@2x~ipad.png"},
        // Sharp goes before right, of what must be enlarged the largest but no small print.
        {{{"A@2x", 120}, {"B", 1024}, {"C@2x~ipad", 167}}, 180, "B.png C@2x~ipad.png A@2x.png"},
        {{{"A", 60}, {"B@3x", 87}}, 87, "B@3x.png A.png"},
        {{{"A", 60}, {"B@2x", 80}, {"C@2x", 100}}, 180, "A.png C@2x.png B@2x.png"}};
    for (const auto& [icons, pixels, order] : cases) {
        put(icons);
        EXPECT_EQ(found("{CFBundleIconFiles = (A, B, C);}", pixels), order) << pixels;
    }
}

TEST_F(BundleIconsTest, AsksTheSourcesInTurn) {
    put({{"P@2x", 58}, {"T", 58}, {"I~ipad", 58}, {"Icon", 1024}, {"X", 180}});
    putFile(bundle / "S", png(58, 58));
    const std::string primary = "{CFBundlePrimaryIcon = {CFBundleIconFiles = ";
    const std::pair<std::string, const char*> cases[] = {
        {"{CFBundleIconFile = S; CFBundleIconFiles = (\"T.png\"); \"CFBundleIcons~ipad\" = " +
             primary + "(I);};}; CFBundleIcons = " + primary + "(\"P@2x\");};};}",
         "P@2x.png T.png I~ipad.png S Icon.png"},
        // A name that carries an extension or a variant stands for all variants.
        {"{CFBundleIconFiles = (\"P.PNG\", \"I@3x.png\");}", "P@2x.png I~ipad.png Icon.png"},
        // Wrong types: a text for a list, a text for the primary icon, a list of lists.
        {"{CFBundleIconFiles = X; CFBundleIcons = {CFBundlePrimaryIcon = X;};}", "Icon.png"},
        {"{CFBundleIconFiles = (); CFBundleIconFile = (X); CFBundleIcons = (X);}", "Icon.png"},
        {"{CFBundleIconFiles = ((X), {a = X;}, \"\", T);}", "T.png Icon.png"},
        {"(X)", "Icon.png"}};
    for (const auto& [info, order] : cases)
        EXPECT_EQ(found(info, 58), order) << info;
    // What is not listed stands in only where nothing is, even where it would be sharper.
    EXPECT_EQ(found("{CFBundleIconFiles = (T); CFBundleIconFile = X;}", 180),
              "T.png X.png Icon.png");
}

TEST_F(BundleIconsTest, StaysInsideTheBundle) {
    putFile(folder / "outside.png", png(58, 58));
    putFile(bundle / "art/inside.png", png(58, 58));
    fs::create_symlink("art/inside.png", bundle / "kept.png");
    fs::create_symlink("../outside.png", bundle / "leaving.png");
    fs::create_symlink("..", bundle / "up");
    fs::create_symlink("circle.png", bundle / "circle.png");
    EXPECT_EQ(
        found("{CFBundleIconFiles = (leaving, \"../outside\", \"up/outside\", circle, art, \"" +
                  (folder / "outside").string() + "\", kept, \"art/inside\");}",
              58),
        "art/inside.png");
    bundle = folder / "Gone.app";
    EXPECT_EQ(found("{CFBundleIconFile = kept;}", 58), "");
}

TEST_F(BundleIconsTest, TakesPngFilesOfSensibleSizeOnly) {
    std::string falseChecksum = png(58, 58);
    falseChecksum.back() ^= 1;
    const std::pair<std::string, bool> cases[] = {
        {CrushedPng().of(samplePixels(58 * 58), 58), true},
        {png(largestIconEdge, largestIconEdge), true},
        {png(58, largestIconEdge + 1), false},
        {png(0, 58), false},
        {png(58, 58).substr(0, 24), false},
        {falseChecksum, false},
        {"Just a text that is long enough for a header of any image.", false},
        {"", false}};
    for (const auto& [bytes, isTaken] : cases) {
        putFile(bundle / "A.png", bytes);
        EXPECT_EQ(found("{CFBundleIconFile = A;}", 58), isTaken ? "A.png" : "") << bytes.size();
    }
}

} // namespace dubrix
