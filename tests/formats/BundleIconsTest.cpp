#include "formats/images/BundleIcons.h"
#include "formats/images/PngChunks.h"
#include "formats/lists/PropertyList.h"
#include "tests/formats/CrushedPngFile.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>

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
    static std::string png(std::uint32_t edge) { return png(edge, edge); }

    std::string found(const char* info, unsigned pixels) const {
        const auto list = PropertyList::parse(info);
        if (!list)
            return "unreadable Info.plist";
        std::string names;
        for (const fs::path& file : iconFilesOfBundle(bundle, *list, pixels))
            names += (names.empty() ? "" : " ") + file.lexically_relative(bundle).string();
        return names;
    }

    TemporaryFolder folder;
    fs::path bundle = fs::canonical(folder.path()) / "Some.app";
};

TEST_F(BundleIconsTest, OrdersTheVariantsByWhatFillsTheSquare) {
    for (const auto& [name, edge] :
         std::initializer_list<std::pair<const char*, std::uint32_t>>{{"A29@2x.png", 58},
                                                                      {"A29@3x.png", 87},
                                                                      {"A60@2x.png", 120},
                                                                      {"A83.5@2x~ipad.png", 167},
                                                                      {"A29~ipad.png", 29}})
        putFile(bundle / name, png(edge));
    constexpr auto info = "{CFBundleIcons = {CFBundlePrimaryIcon = {CFBundleIconFiles = "
                          "(\"A29\", \"A60\", \"A83.5\");};};}";
    const struct {
        unsigned pixels;
        const char* order;
    } cases[] = {
        {29, "A60@2x.png A83.5@2x~ipad.png A29~ipad.png A29@2x.png A29@3x.png"},
        {58, "A60@2x.png A83.5@2x~ipad.png A29@2x.png A29@3x.png A29~ipad.png"},
        {100, "A60@2x.png A83.5@2x~ipad.png A29@3x.png A29@2x.png A29~ipad.png"},
        {500, "A83.5@2x~ipad.png A60@2x.png A29@3x.png A29@2x.png A29~ipad.png"},
    };
    for (const auto& [pixels, order] : cases)
        EXPECT_EQ(found(info, pixels), order) << pixels;
}

TEST_F(BundleIconsTest, DrawsTheHomeScreensIconAtEachDensity) {
    const struct {
        std::vector<std::pair<const char*, std::uint32_t>> files;
        unsigned pixels;
        const char* first;
    } cases[] = {
        // 120 pixels are 40 or 60 points, 60 are 20 or 60.
        {{{"A@3x", 120}, {"B@2x", 120}}, 120, "B@2x.png"},
        {{{"A@3x", 60}, {"B", 60}, {"C@2x", 80}}, 58, "B.png"},
        {{{"A", 120}, {"B", 180}, {"C", 80}}, 58, "A.png"},
        {{{"A@2x", 120}, {"B@3x", 180}, {"C@3x", 120}}, 180, "B@3x.png"},
        {{{"A@2x", 114}, {"B@2x", 80}, {"C@2x", 58}}, 58, "A@2x.png"},
        {{{"A@2x~ipad", 80}, {"B@2x~ipad", 152}, {"C@2x~ipad", 167}}, 76, "B@2x~ipad.png"},
        {{{"A@2x~ipad", 120}, {"B@2x~ipad", 152}}, 87, "B@2x~ipad.png"},
        {{{"A~ipad", 76}, {"B@2x", 120}}, 58, "B@2x.png"},
        // Sharp goes before right, of what must be enlarged the largest but no small print.
        {{{"A@2x", 120}, {"B", 1024}, {"C@2x~ipad", 167}}, 180, "B.png"},
        {{{"A", 60}, {"B@3x", 87}}, 87, "B@3x.png"},
        {{{"A@2x", 120}, {"B@2x~ipad", 152}}, 180, "B@2x~ipad.png"},
        {{{"A", 60}, {"B@2x", 80}}, 180, "A.png"},
    };
    for (const auto& [files, pixels, first] : cases) {
        fs::remove_all(bundle);
        for (const auto& [name, edge] : files)
            putFile(bundle / (std::string(name) + ".png"), png(edge));
        const std::string order = found("{CFBundleIconFiles = (A, B, C);}", pixels);
        EXPECT_EQ(order.substr(0, order.find(' ')), first) << order;
    }
}

TEST_F(BundleIconsTest, WhatIsNotListedStandsInOnlyWhereNothingIs) {
    putFile(bundle / "A.png", png(57));
    putFile(bundle / "P@2x.png", png(120));
    putFile(bundle / "Icon.png", png(1024));
    EXPECT_EQ(found("{CFBundleIconFiles = (A); CFBundleIconFile = P;}", 180),
              "A.png P@2x.png Icon.png");
    EXPECT_EQ(found("{CFBundleIconFiles = (A); \"CFBundleIcons~ipad\" = {CFBundlePrimaryIcon = "
                    "{CFBundleIconFiles = (P);};};}",
                    120),
              "P@2x.png A.png Icon.png");
}

TEST_F(BundleIconsTest, AsksTheSourcesInTurn) {
    for (const char* name : {"P@2x.png", "T.png", "I~ipad.png", "S", "Icon.png", "X.png"})
        putFile(bundle / name, png(58));
    const struct {
        const char* info;
        const char* order;
    } cases[] = {
        {"{CFBundleIconFile = S; CFBundleIconFiles = (\"T.png\"); \"CFBundleIcons~ipad\" = "
         "{CFBundlePrimaryIcon = {CFBundleIconFiles = (I);};}; CFBundleIcons = "
         "{CFBundlePrimaryIcon = {CFBundleIconFiles = (\"P@2x\");};};}",
         "P@2x.png T.png I~ipad.png S Icon.png"},
        // A name that carries an extension or a variant stands for all variants.
        {"{CFBundleIconFiles = (\"P.png\", \"I@3x.png\");}", "P@2x.png I~ipad.png Icon.png"},
        // Wrong types: a text for a list, a text for the primary icon, a list of lists.
        {"{CFBundleIconFiles = X; CFBundleIcons = {CFBundlePrimaryIcon = X;};}", "Icon.png"},
        {"{CFBundleIconFiles = (); CFBundleIconFile = (X); CFBundleIcons = (X);}", "Icon.png"},
        {"{CFBundleIconFiles = ((X), {a = X;}, \"\", T);}", "T.png Icon.png"},
        {"{}", "Icon.png"},
        {"(X)", "Icon.png"},
    };
    for (const auto& [info, order] : cases)
        EXPECT_EQ(found(info, 58), order) << info;
}

TEST_F(BundleIconsTest, StaysInsideTheBundle) {
    putFile(folder / "outside.png", png(58));
    putFile(bundle / "art/inside.png", png(58));
    fs::create_symlink("art/inside.png", bundle / "kept.png");
    fs::create_symlink("../outside.png", bundle / "leaving.png");
    fs::create_symlink(folder / "outside.png", bundle / "absolute.png");
    fs::create_symlink("..", bundle / "up");
    fs::create_symlink("circle.png", bundle / "circle.png");
    const std::string absolute = (folder / "outside").string();
    for (const std::string name :
         {"leaving", "absolute", "../outside", "up/outside", "circle", "art", absolute.c_str()})
        EXPECT_EQ(found(("{CFBundleIconFile = \"" + name + "\";}").c_str(), 58), "") << name;
    EXPECT_EQ(found("{CFBundleIconFiles = (kept, \"art/inside\");}", 58), "art/inside.png");
    bundle = folder / "Gone.app";
    EXPECT_EQ(found("{CFBundleIconFile = kept;}", 58), "");
}

TEST_F(BundleIconsTest, TakesPngFilesOfSensibleSizeOnly) {
    CrushedPngFile crushed{.width = 58, .height = 58};
    const std::string truncated = png(58).substr(0, 24);
    std::string falseChecksum = png(58);
    falseChecksum.back() ^= 1;
    const struct {
        const char* what;
        std::string bytes;
        bool taken;
    } cases[] = {
        {"crushed", crushed.bytes(samplePixels(58 * 58)), true},
        {"largest", png(largestIconEdge), true},
        {"too large", png(58, largestIconEdge + 1), false},
        {"empty image", png(0, 58), false},
        {"truncated", truncated, false},
        {"false checksum", falseChecksum, false},
        {"no image", "Just a text that is long enough for a header of any image.", false},
        {"empty file", "", false},
    };
    for (const auto& [what, bytes, taken] : cases) {
        putFile(bundle / "A.png", bytes);
        EXPECT_EQ(found("{CFBundleIconFile = A;}", 58), taken ? "A.png" : "") << what;
    }
}

} // namespace dubrix
