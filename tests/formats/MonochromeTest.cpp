#include "formats/images/MonochromeRemap.h"
#include "formats/images/PngEncoding.h"
#include "tests/formats/JpegFiles.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>

namespace dubrix {

namespace {

using Color = std::array<float, 3>;

const Color tints[] = {{1, 1, 1},    {0.8F, 0.2F, 0.4F}, {1, 0, 0},          {0, 0, 1},
                       {1, 0.4F, 0}, {0.02F, 0.2F, 1},   {0.5F, 0.5F, 0.5F}, {0.004F, 0.01F, 0},
                       {0, 0, 0},    {0.1F, 1, 1e-40F}};

double linear(double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

std::string tinted(const std::string& file, const Color& color) {
    return monochromePng(file, color[0], color[1], color[2]).value_or("");
}

std::string rowOf(const std::vector<Rgba>& pixels) {
    return pngOf(pixels, static_cast<std::uint32_t>(pixels.size()));
}

/// How many pixels of `actual` are further than 1 of 255 from the formula.
std::size_t countFarFromFormula(const RgbaImage& source, const RgbaImage& actual,
                                const Color& color) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < source.pixelCount() * RgbaImage::pixelSize; at += 4) {
        const std::uint8_t* const from = source.bytes.get() + at;
        const std::uint8_t* const to = actual.bytes.get() + at;
        const double luminance = 0.2126 * linear(from[0] / 255.0) +
                                 0.7152 * linear(from[1] / 255.0) +
                                 0.0722 * linear(from[2] / 255.0);
        bool isNear = to[3] == from[3];
        for (std::size_t sample = 0; sample < 3; ++sample) {
            const double light = luminance * linear(double{color[sample]});
            const double exact =
                light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
            isNear = isNear && std::abs(255 * exact - to[sample]) <= 1;
        }
        count += isNear ? 0 : 1;
    }
    return count;
}

} // namespace

TEST(Monochrome, ColorsFollowTheFormulaAndThenStay) {
    constexpr std::uint32_t step = 255; // a divisor of the number of white
    constexpr std::uint32_t white = 0xffffff;
    RgbaImage source(white / step + 1, 1), image(source.width, 1);
    for (std::uint32_t value = 0; value <= white; value += step) {
        const std::uint32_t pixel = 0xff000000 | value;
        std::memcpy(source.bytes.get() + value / step * sizeof pixel, &pixel, sizeof pixel);
    }
    for (const Color& tint : tints) {
        SCOPED_TRACE(testing::PrintToString(tint));
        std::memcpy(image.bytes.get(), source.bytes.get(), source.rowSize());
        const MonochromeRemap remap(tint[0], tint[1], tint[2]);
        EXPECT_FALSE(remap.holdsShadesOnly(image.bytes.get(), image.pixelCount()));
        remap.apply(image.bytes.get(), image.pixelCount());
        EXPECT_EQ(countFarFromFormula(source, image, tint), 0U);
        EXPECT_TRUE(remap.holdsShadesOnly(image.bytes.get(), image.pixelCount()));
    }
}

TEST(Monochrome, EndsOfTheScaleAreExact) {
    const Color beyond{std::numeric_limits<float>::quiet_NaN(), 0.2F, 1e30F};
    EXPECT_EQ(decoded(tinted(rowOf({{255, 255, 255, 9}, {}}), beyond)),
              (std::vector<Rgba>{{0, 51, 255, 9}, {}}));
    const MonochromeRemap white(1, 1, 1);
    for (unsigned level = 0; level < 256; ++level) {
        const auto grey = static_cast<std::uint8_t>(level);
        Rgba pixel{grey, grey, grey, 255};
        white.apply(pixel.data(), 1);
        EXPECT_EQ(pixel, (Rgba{grey, grey, grey, 255}));
    }
}

TEST(Monochrome, AnyNumberOfTimesIsOnceAndAnotherColorANewTint) {
    const std::string plain = rowOf(samplePixels(3000));
    const std::string red = tinted(plain, {0.8F, 0, 0.1F});
    for (const Color& tint : tints) {
        SCOPED_TRACE(testing::PrintToString(tint));
        for (const std::string& file : {plain, CrushedPng().of(samplePixels(600), 30),
                                        jpegOf({}, std::string(3000, '\x66'), 50)}) {
            const std::string once = tinted(file, tint);
            EXPECT_TRUE(!once.empty() && tinted(once, tint) == once);
        }
        EXPECT_EQ(countFarFromFormula(*decodeImage(red), *decodeImage(tinted(red, tint)), tint),
                  0U);
    }
}

TEST(Monochrome, ShadesStayBitForBit) {
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
        {"a step off", color, {whole, {203, 52, 101, 255}, {1, 0, 1, 255}}, true},
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
    for (const auto& [what, tint, pixels, stays] : cases)
        EXPECT_EQ(tinted(rowOf(pixels), tint) == rowOf(pixels), stays) << what;
}

TEST(Monochrome, ShadesInOtherFormsKeepTheirPixels) {
    using namespace std::string_literals;
    const Color color{0.8F, 0.2F, 0.4F};
    const std::vector<Rgba> pixels{{204, 51, 102, 255}};
    const auto with = [&](const char* chunk) {
        return pngOf({1, 1}, rowsOf(pixels, 1), {{chunk, std::string_view("\0\1\x86\xa0", 4)}});
    };
    for (const std::string& file :
         {CrushedPng().of(pixels, 1), pngOf({1, 1, 16}, "\0\xcc\xcc\x33\x33\x66\x66\xff\xff"s),
          with("gAMA"), with("eXIf"), with("acTL")}) {
        const std::string result = tinted(file, color);
        EXPECT_NE(result, file);
        EXPECT_EQ(decoded(result), pixels);
        EXPECT_EQ(result[24], 8) << "bits a sample";
    }
    for (const std::string& file : {rowOf(pixels), with("tEXt"),
                                    pngOf({1, 1, 1, PngColorType::Palette}, "\0\x80"s,
                                          {{"PLTE", std::string_view("\0\0\0\xcc\x33\x66", 6)}}),
                                    pngOf({1, 1, 8, PngColorType::Rgb}, "\0\xcc\x33\x66"s)})
        EXPECT_EQ(tinted(file, color), file);
}

} // namespace dubrix
