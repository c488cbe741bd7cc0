#include "formats/images/ImageDecoding.h"
#include "formats/images/MonochromeRemap.h"
#include "formats/images/PngEncoding.h"
#include "platform/posix/PosixMonochromeFilter.h"
#include "tests/platform/SampleJpeg.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>

namespace dubrix {

namespace {

using Color = std::array<float, 3>;

double linear(double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

std::string tinted(const std::string& file, const Color& color) {
    return PosixMonochromeFilter().monochromePng(file, color[0], color[1], color[2]).value_or("");
}

std::string pngOf(const std::vector<Rgba>& pixels) {
    return dubrix::pngOf(pixels, static_cast<std::uint32_t>(pixels.size()));
}

std::string eightTimes(const std::string& part) {
    std::string whole;
    for (int count = 0; count < 8; ++count)
        whole += part;
    return whole;
}

std::vector<Rgba> pixelsOf(const std::string& file) {
    const auto image = decodeImage(file);
    std::vector<Rgba> pixels(image ? image->pixelCount() : 0);
    if (image)
        std::memcpy(pixels.data(), image->bytes.get(), pixels.size() * sizeof(Rgba));
    return pixels;
}

/// A colour of each of the 2^24, as an image.
RgbaImage allColors() {
    RgbaImage image(4096, 4096);
    for (std::uint32_t value = 0; value < 1U << 24; ++value) {
        const Rgba pixel{static_cast<std::uint8_t>(value >> 16),
                         static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value),
                         255};
        std::memcpy(image.bytes.get() + value * sizeof pixel, pixel.data(), sizeof pixel);
    }
    return image;
}

/// How many pixels of `actual` are further than 1 of 255 from the formula. Compared as light, which
/// rises with the encoded value, so that no root is taken for each pixel.
std::size_t countFarFromFormula(const RgbaImage& source, const RgbaImage& actual,
                                const Color& color) {
    std::array<double, 256> light{}, least{}, most{};
    for (unsigned level = 0; level < 256; ++level) {
        light[level] = linear(level / 255.0);
        least[level] = level == 0 ? -1 : linear((level - 1) / 255.0);
        most[level] = level == 255 ? 2 : linear((level + 1) / 255.0);
    }
    const std::array<double, 3> tint{linear(double{color[0]}), linear(double{color[1]}),
                                     linear(double{color[2]})};
    std::size_t count = 0;
    for (std::size_t at = 0; at < source.pixelCount() * RgbaImage::pixelSize; at += 4) {
        const std::uint8_t* const from = source.bytes.get() + at;
        const std::uint8_t* const to = actual.bytes.get() + at;
        const double luminance =
            0.2126 * light[from[0]] + 0.7152 * light[from[1]] + 0.0722 * light[from[2]];
        bool isNear = to[3] == from[3];
        for (std::size_t sample = 0; sample < 3; ++sample) {
            const double exact = luminance * tint[sample];
            isNear = isNear && exact >= least[to[sample]] && exact <= most[to[sample]];
        }
        count += isNear ? 0 : 1;
    }
    return count;
}

const Color tints[] = {{1, 1, 1},    {0.8F, 0.2F, 0.4F}, {1, 0, 0},          {0, 0, 1},
                       {1, 0.4F, 0}, {0.02F, 0.2F, 1},   {0.5F, 0.5F, 0.5F}, {0.004F, 0.01F, 0},
                       {0, 0, 0},    {0.1F, 1, 1e-40F}};

} // namespace

TEST(MonochromeProjection, EveryColorFollowsTheFormulaAndThenStays) {
    const RgbaImage source = allColors();
    RgbaImage image(source.width, source.height);
    for (const Color& tint : tints) {
        SCOPED_TRACE(testing::PrintToString(tint));
        std::memcpy(image.bytes.get(), source.bytes.get(), source.pixelCount() * 4);
        const MonochromeRemap remap(tint[0], tint[1], tint[2]);
        EXPECT_FALSE(remap.holdsShadesOnly(image.bytes.get(), image.pixelCount()));
        remap.apply(image.bytes.get(), image.pixelCount());
        EXPECT_EQ(countFarFromFormula(source, image, tint), 0U);
        EXPECT_TRUE(remap.holdsShadesOnly(image.bytes.get(), image.pixelCount()));
    }
}

TEST(MonochromeProjection, AnyNumberOfTimesIsOnce) {
    const std::string plain = pngOf(samplePixels(3000));
    const std::string files[] = {
        plain,
        encodePng(*decodeImage(plain)).value_or(""),
        CrushedPngFile{30, 20, true, false, 2}.bytes(samplePixels(600)),
        jpegOf(pixelsByLibpng(plain)),
        pngOf({{255, 255, 255, 255}}),
        pngOf({{0, 0, 0, 255}, {200, 100, 0, 0}}),
    };
    for (const Color& tint : tints) {
        for (const std::string& file : files) {
            SCOPED_TRACE(testing::PrintToString(tint) + testing::PrintToString(&file - files));
            const std::string once = tinted(file, tint);
            ASSERT_FALSE(once.empty());
            EXPECT_TRUE(tinted(once, tint) == once);
            EXPECT_TRUE(tinted(tinted(once, tint), tint) == once);
        }
    }
}

TEST(MonochromeProjection, AnotherColorAfterwardsIsANewTint) {
    const Color red{0.8F, 0, 0.1F};
    const Color blue{0.1F, 0.2F, 0.9F};
    const std::string file = tinted(pngOf(samplePixels(2000)), red);
    const auto source = decodeImage(file);
    const auto again = decodeImage(tinted(file, blue));
    ASSERT_TRUE(source && again);
    EXPECT_EQ(countFarFromFormula(*source, *again, blue), 0U);
    EXPECT_EQ(pixelsOf(tinted(pngOf({{255, 255, 255, 255}}), blue)).front(),
              (Rgba{26, 51, 229, 255}));
}

TEST(MonochromeProjection, ShadesStayBitForBit) {
    const Color color{0.8F, 0.2F, 0.4F}; // 204, 51, 102
    const Color grey{0.5F, 0.5F, 0.5F};
    const Rgba whole{204, 51, 102, 255};
    const struct {
        const char* what;
        Color color;
        std::vector<Rgba> pixels;
        bool stays;
    } cases[] = {
        {"the colour, faintly, and black", color, {whole, {204, 51, 102, 3}, {0, 0, 0, 255}}, true},
        {"a step off",
         color,
         {whole, {203, 52, 101, 255}, {1, 0, 1, 255}, {205, 52, 103, 9}},
         true},
        {"two steps off", color, {whole, {204, 53, 102, 255}}, false},
        {"brighter than the colour", color, {whole, {220, 55, 110, 255}}, false},
        {"nearly invisible, another colour", color, {whole, {51, 204, 102, 1}}, false},
        {"invisible, another colour", color, {whole, {51, 204, 102, 0}}, true},
        {"nothing visible", color, {{51, 204, 102, 0}}, true},
        {"greys up to grey", grey, {{128, 128, 128, 255}, {77, 78, 77, 255}}, true},
        {"greys beyond grey", grey, {{128, 128, 128, 255}, {130, 130, 130, 255}}, false},
        {"greys and white", {1, 1, 1}, {{255, 255, 255, 255}, {130, 131, 129, 255}}, true},
        {"black by black", {0, 0, 0}, {{0, 0, 0, 255}, {1, 1, 1, 255}}, true},
        {"dark grey by black", {0, 0, 0}, {{2, 0, 0, 255}}, false},
        {"a component that the colour lacks", {1, 0, 0}, {{90, 1, 1, 255}}, true},
        {"more of it", {1, 0, 0}, {{90, 2, 1, 255}}, false},
    };
    for (const auto& [what, tint, pixels, stays] : cases) {
        const std::string file = pngOf(pixels);
        EXPECT_EQ(tinted(file, tint) == file, stays) << what;
    }
}

TEST(MonochromeProjection, ShadesInOtherFormsKeepTheirPixels) {
    const Color color{0.8F, 0.2F, 0.4F};
    const std::vector<Rgba> pixels(64, {204, 51, 102, 255});
    const std::string plain = dubrix::pngOf(pixels, 8);
    std::string otherGamma = plain;
    std::string gamma;
    appendPngChunk(gamma, "gAMA", std::string("\0\1\x86\xa0", 4));
    otherGamma.insert(33, gamma); // after the header
    const std::string rewritten[] = {
        CrushedPngFile{8, 8}.bytes(pixels),
        dubrix::pngOf({8, 8, 16}, eightTimes(std::string(1, '\0') +
                                             eightTimes("\xcc\xcc\x33\x33\x66\x66\xff\xff"))),
        jpegOf({8, 8, pixels}),
        otherGamma,
    };
    for (const std::string& file : rewritten) {
        const std::string result = tinted(file, color);
        EXPECT_TRUE(result != file && result.starts_with(pngSignature)) << &file - rewritten;
        EXPECT_EQ(result.substr(12, 4), "IHDR");
        EXPECT_EQ(result[24], 8) << "bits a sample";
        EXPECT_EQ(pixelsOf(result), pixelsOf(file)) << &file - rewritten;
    }
    const std::string palette("\0\0\0\xcc\x33\x66", 6);
    const std::string kept[] = {
        plain,
        dubrix::pngOf({8, 8, 1, PngColorType::Palette}, eightTimes(std::string("\0\xff", 2)),
                      palette),
        dubrix::pngOf({8, 8, 8, PngColorType::Palette},
                      eightTimes(std::string(1, '\0') + eightTimes("\1")), palette),
        dubrix::pngOf({8, 8, 8, PngColorType::Rgb},
                      eightTimes(std::string(1, '\0') + eightTimes("\xcc\x33\x66"))),
    };
    for (const std::string& file : kept)
        EXPECT_TRUE(tinted(file, color) == file) << &file - kept;
}

} // namespace dubrix
