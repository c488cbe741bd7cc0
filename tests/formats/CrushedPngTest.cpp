#include "formats/images/ImageDecoding.h"
#include "tests/formats/CrushedPngFile.h"

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

} // namespace

TEST(CrushedPng, ComesOutPixelByPixel) {
    const CrushedPngFile files[] = {
        {1, 1},
        {40, 30},
        {7, 5, true},
        {33, 20, true, true, 3},
        {25, 31, false, true, 5},
        {64, 64, false, false, 200},
        {16, 9, false, false, 1, true},
    };
    for (const CrushedPngFile& file : files) {
        SCOPED_TRACE(testing::Message() << file.width << " x " << file.height);
        const auto pixels = samplePixels(file.width * file.height);
        const std::string crushed = file.bytes(pixels);
        EXPECT_TRUE(isCrushedPng(crushed));
        const auto image = decodeImage(crushed);
        ASSERT_TRUE(image && image->width == file.width && image->height == file.height);
        for (std::size_t index = 0; index < pixels.size(); ++index) {
            Rgba found;
            std::copy_n(image->bytes.get() + 4 * index, 4, found.begin());
            ASSERT_EQ(found, afterCrushing(pixels[index], file.ignoresAlpha)) << index;
        }
    }
}

TEST(CrushedPng, ARepeatThatSpansManyRowsIsFollowedToItsEnd) {
    const auto image =
        decodeCrushedPng(CrushedPngFile{1, 300}.bytes(std::vector<Rgba>(300, Rgba{})));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->height, 300U);
}

TEST(CrushedPng, DamageGivesNothing) {
    const CrushedPngFile file{12, 9, false, false, 2};
    const std::string sound = file.bytes(samplePixels(12 * 9));
    ASSERT_TRUE(decodeCrushedPng(sound));
    for (std::size_t size = 0; size < sound.size(); ++size)
        ASSERT_FALSE(decodeCrushedPng(sound.substr(0, size))) << size;
    for (std::size_t index = 0; index < sound.size(); ++index) {
        std::string damaged = sound;
        damaged[index] = static_cast<char>(damaged[index] ^ 0x10);
        ASSERT_FALSE(decodeCrushedPng(damaged)) << index;
    }
}

TEST(CrushedPng, FalseSizesAndUnknownKindsGiveNothing) {
    const auto grey = [](std::uint8_t depth) {
        return PngHeader{2, 2, depth, PngColorType::Grey, false};
    };
    const std::string flags("\x50\0\x20\2", 4);
    const auto fileOf = [&flags](const PngHeader& header, const std::string& rows) {
        return CrushedPngFile{}.assembled(flags, header, deflated(rows, -15));
    };
    EXPECT_TRUE(decodeCrushedPng(fileOf(grey(8), std::string(6, '\0'))));
    EXPECT_TRUE(decodeCrushedPng(fileOf(grey(8), std::string(std::size_t{64} << 20, '\0'))))
        << "what comes after the last row is passed over, as in any PNG";
    const std::string refused[] = {
        fileOf(grey(16), std::string(10, '\0')),
        fileOf({2, 2, 8, PngColorType::Palette, false}, std::string(6, '\0')),
        fileOf(grey(8), std::string(5, '\0')),
        fileOf(grey(8), "\5" + std::string(5, '\0')),
        fileOf({0, 2}, std::string(6, '\0')),
        fileOf({60000, 60000}, std::string(100, '\0')),
        fileOf({8000, 8000}, std::string(100, '\0')),
        fileOf({0xffffffff, 0xffffffff}, std::string(100, '\0')),
    };
    for (const std::string& file : refused)
        EXPECT_FALSE(decodeCrushedPng(file)) << &file - refused;
}

} // namespace dubrix
