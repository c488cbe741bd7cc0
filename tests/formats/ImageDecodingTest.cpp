#include "formats/images/PngEncoding.h"
#include "tests/formats/JpegFiles.h"

#include <cmath>
#include <gtest/gtest.h>

namespace dubrix {

namespace {

/// What is left of a pixel after it was premultiplied and divided again.
Rgba afterCrushing(const Rgba& pixel, bool ignoresAlpha) {
    if (ignoresAlpha)
        return {pixel[0], pixel[1], pixel[2], 255};
    Rgba result{0, 0, 0, pixel[3]};
    for (std::size_t sample = 0; sample < 3 && pixel[3] > 0; ++sample) {
        const int premultiplied = (pixel[sample] * pixel[3] + 127) / 255;
        result[sample] = static_cast<std::uint8_t>(
            std::min(255.0, std::floor(premultiplied * 255.0 / pixel[3] + 0.5)));
    }
    return result;
}

PngHeader grey(std::uint32_t width, std::uint32_t height, std::uint8_t depth = 8) {
    return {width, height, depth, PngColorType::Grey};
}

} // namespace

TEST(ImageDecoding, TakesCrushedPngPixelByPixel) {
    for (const CrushedPng& kind :
         {CrushedPng(), {.ignoresAlpha = true, .dataChunks = 3}, {false, 200, true}}) {
        const auto pixels = samplePixels(64 * 30);
        const auto found = decoded(kind.of(pixels, 64));
        ASSERT_EQ(found.size(), pixels.size());
        for (std::size_t index = 0; index < pixels.size(); ++index)
            ASSERT_EQ(found[index], afterCrushing(pixels[index], kind.ignoresAlpha)) << index;
    }
    EXPECT_EQ(decoded(CrushedPng().of(std::vector<Rgba>(300), 1)).size(), 300U)
        << "a repeat that spans many rows is followed to its end";
}

TEST(ImageDecoding, TakesJpegOfLightAndOfInksAndPngWithATransparentShade) {
    const auto expectEven = [](const JpegKind& kind, const std::string& sample, const Rgba& pixel) {
        std::string samples;
        for (int count = 0; count < 17 * 9; ++count)
            samples += sample;
        EXPECT_EQ(decoded(jpegOf(kind, samples, 17)), std::vector<Rgba>(17 * 9, pixel));
    };
    expectEven({}, "\x10\x80\xf0", {16, 128, 240, 255});
    expectEven({JCS_GRAYSCALE, true}, "\x30", {48, 48, 48, 255});
    expectEven({JCS_CMYK, false, true}, "\xff\x80\x32\xc8", {200, 100, 39, 255});
    expectEven({JCS_CMYK}, "\xff\x80\x32\xc8", {0, 27, 44, 255});
    const std::string shade("\0\x10\xff", 3);
    EXPECT_EQ(decoded(pngOf(grey(1, 1, 16), shade, {{"tRNS", shade.substr(1)}})),
              (std::vector<Rgba>{{17, 17, 17, 0}}));
}

TEST(ImageDecoding, DamageAndFalseSizesGiveNothing) {
    const auto pixels = samplePixels(12 * 9);
    const std::string jpeg = jpegOf({}, std::string(3 * 40 * 24, '\x55'), 40);
    const std::string sound[] = {CrushedPng{.dataChunks = 2}.of(pixels, 12), pngOf(pixels, 12),
                                 jpeg};
    for (const std::string& file : sound) {
        ASSERT_FALSE(decoded(file).empty());
        for (std::size_t size = 0; size < file.size() - 1; ++size)
            ASSERT_TRUE(decoded(file.substr(0, size)).empty()) << size;
        for (std::size_t index = 0; index < file.size() && file != jpeg; ++index) {
            std::string damaged = file;
            damaged[index] = static_cast<char>(damaged[index] ^ 0x10);
            ASSERT_TRUE(decoded(damaged).empty()) << index;
        }
    }
    for (const bool isCrushed : {false, true}) {
        const auto isTaken = [isCrushed](const PngHeader& header, const std::string& rows) {
            return decodeImage(isCrushed ? CrushedPng().of(header, rows) : pngOf(header, rows))
                .has_value();
        };
        EXPECT_TRUE(isTaken(grey(2, 2), std::string(6, '\0')));
        EXPECT_EQ(isTaken(grey(2, 2, 16), std::string(10, '\0')), !isCrushed) << "none are known";
        EXPECT_FALSE(isTaken(grey(2, 2), std::string(5, '\0')));
        for (const auto& [width, height] : {std::pair(0U, 2U), {8000U, 8000U}, {~0U, ~0U}})
            EXPECT_FALSE(isTaken({width, height}, std::string(100, '\0'))) << width;
    }
    EXPECT_TRUE(isWorkableImageSize(8192, 8192));
    EXPECT_FALSE(decodeImage(pngOf(grey(8193, 8192, 1), std::string(8192 * 1026, '\0'))));
    std::string huge = jpeg;
    huge.replace(jpeg.find("\xff\xc0") + 5, 4, "\xea\x60\xea\x60");
    EXPECT_TRUE(decoded(huge).empty());
}

TEST(ImageDecoding, WhatEveryDecoderPassesOverRefusesNothing) {
    const std::vector<PngChunk> palette{{"PLTE", "redGRN"}};
    const std::vector<PngChunk> longTransparency{{"PLTE", "redGRN"}, {"tRNS", "\1\2\3"}};
    const std::vector<Rgba> pixels{
        {'r', 'e', 'd', 255}, {'G', 'R', 'N', 255}, {'G', 'R', 'N', 255}, {'r', 'e', 'd', 255}};
    const std::string surplus = rowsOf(samplePixels(50'000), 50);
    for (const bool isInterlaced : {false, true}) {
        const PngHeader header{2, 2, 8, PngColorType::Palette, isInterlaced};
        // Of the passes there are the first, the sixth and the seventh.
        const std::string rows =
            isInterlaced ? std::string("\0\0\0\1\0\1\0", 7) : std::string("\0\0\1\0\1\0", 6);
        for (const std::string& file :
             {pngOf(header, rows, palette), pngOf(header, rows, longTransparency),
              pngOf(header, rows + "surplus", palette), pngOf(header, rows + surplus, palette)}) {
            EXPECT_EQ(decoded(file), pixels) << isInterlaced << ' ' << file.size();
            EXPECT_TRUE(decoded(file.substr(0, file.size() - 9)).empty()) << file.size();
        }
    }
}

TEST(ImageDecoding, IsUndoneExactlyAroundTheLimitOfAPalette) {
    for (const std::uint8_t alpha : {255, 254})
        for (const unsigned values : {1U, 256U, 257U, 900U}) {
            std::vector<Rgba> pixels;
            for (unsigned index = 0; index < 900; ++index)
                pixels.push_back({static_cast<std::uint8_t>(index % values), 7,
                                  static_cast<std::uint8_t>(index % values >> 8), alpha});
            const std::string png = encodePng(*decodeImage(pngOf(pixels, 30))).value_or("");
            EXPECT_EQ(png[25], values <= 256 ? 3 : alpha == 255 ? 2 : 6) << "colour type";
            EXPECT_EQ(decoded(png), pixels) << values;
        }
}

} // namespace dubrix
