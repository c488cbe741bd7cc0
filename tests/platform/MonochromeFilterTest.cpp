#include "formats/images/ImageDecoding.h"
#include "formats/images/MonochromeRemap.h"
#include "formats/images/PngEncoding.h"
#include "platform/posix/PosixMonochromeFilter.h"
#include "tests/platform/SampleJpeg.h"
#include "tests/platform/SamplePng.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace dubrix {

namespace {

using Color = std::array<float, 3>;

double linear(double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double encoded(double value) {
    return value <= 0.0031308 ? value * 12.92 : 1.055 * std::pow(value, 1 / 2.4) - 0.055;
}

/// Expects `actual` to be the remap of `source` within 1/255, if it is visible, with the same
/// alpha.
void expectRemapped(const Rgba& source, const Color& color, const Rgba& actual) {
    ASSERT_EQ(actual[3], source[3]);
    if (source[3] == 0)
        return;
    const double luminance = 0.2126 * linear(source[0] / 255.0) +
                             0.7152 * linear(source[1] / 255.0) +
                             0.0722 * linear(source[2] / 255.0);
    for (std::size_t sample = 0; sample < 3; ++sample) {
        const double exact = 255 * encoded(luminance * linear(double{color[sample]}));
        ASSERT_NEAR(actual[sample], exact, 1.0) << int{source[0]} << ' ' << int{source[1]} << ' '
                                                << int{source[2]} << ", component " << sample;
    }
}

/// Expects the filter to turn the file into a PNG of these pixels, remapped.
void expectTinted(const std::string& file, std::uint32_t width, const std::vector<Rgba>& pixels) {
    const Color color{0.8F, 0.2F, 1.0F};
    const auto png = PosixMonochromeFilter().monochromePng(file, color[0], color[1], color[2]);
    ASSERT_TRUE(png);
    const Pixels image = pixelsByLibpng(*png);
    ASSERT_EQ(image.width, width);
    ASSERT_EQ(image.values.size(), pixels.size());
    for (std::size_t index = 0; index < pixels.size(); ++index)
        ASSERT_NO_FATAL_FAILURE(expectRemapped(pixels[index], color, image.values[index]))
            << "pixel " << index;
}

Pixels gradient() {
    Pixels pixels{40, 24};
    for (unsigned y = 0; y < pixels.height; ++y)
        for (unsigned x = 0; x < pixels.width; ++x)
            pixels.values.push_back({static_cast<std::uint8_t>(x * 6),
                                     static_cast<std::uint8_t>(y * 10),
                                     static_cast<std::uint8_t>(255 - x * 3), 255});
    return pixels;
}

bool decodes(const std::string& bytes) {
    return decodeImage(bytes).has_value();
}

} // namespace

TEST(MonochromeRemap, EndsOfTheScaleAreExact) {
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    const struct {
        Color color;
        Rgba ofWhite;
    } cases[] = {
        {{0.8F, 0.2F, 0.4F}, {204, 51, 102, 9}},
        {{0, 0, 0}, {0, 0, 0, 9}},
        {{none, -3, 1e30F}, {0, 0, 255, 9}},
    };
    for (const auto& [color, ofWhite] : cases) {
        const MonochromeRemap remap(color[0], color[1], color[2]);
        std::array<Rgba, 2> pixels{{{255, 255, 255, 9}, {0, 0, 0, 0}}};
        remap.apply(pixels[0].data(), pixels.size());
        EXPECT_EQ(pixels[0], ofWhite);
        EXPECT_EQ(pixels[1], (Rgba{0, 0, 0, 0}));
    }
    const MonochromeRemap white(1, 1, 1);
    for (unsigned level = 0; level < 256; ++level) {
        const auto grey = static_cast<std::uint8_t>(level);
        Rgba pixel{grey, grey, grey, 255};
        white.apply(pixel.data(), 1);
        EXPECT_EQ(pixel, (Rgba{grey, grey, grey, 255}));
    }
}

TEST(MonochromeFilter, TakesEveryKindOfPng) {
    std::vector<PngKind> kinds;
    for (const bool isInterlaced : {false, true}) {
        for (const int depth : {1, 2, 4, 8, 16}) {
            for (const int type : {0, 2, 3, 4, 6}) {
                const bool exists = type == 0 || (type == 3 ? depth <= 8 : depth >= 8);
                for (const bool hasTransparency : {false, true}) {
                    if (exists && !(hasTransparency && (type & PNG_COLOR_MASK_ALPHA)))
                        kinds.push_back({type, depth, isInterlaced, hasTransparency});
                }
            }
        }
    }
    for (const PngKind& kind : kinds) {
        SCOPED_TRACE(testing::Message() << "colour type " << kind.colorType << ", depth "
                                        << kind.depth << ", interlaced " << kind.isInterlaced
                                        << ", transparency " << kind.hasTransparency);
        SamplePng sample(kind);
        expectTinted(sample.bytes(), SamplePng::width, sample.expected());
    }
}

TEST(MonochromeFilter, TakesCrushedPngAndJpeg) {
    std::vector<Rgba> opaque = samplePixels(30 * 20);
    for (Rgba& pixel : opaque)
        pixel[3] = 255;
    expectTinted(CrushedPngFile{30, 20, true, false, 2}.bytes(opaque), 30, opaque);
    for (const bool isGrey : {false, true}) {
        const std::string jpeg = jpegOf(gradient(), isGrey);
        expectTinted(jpeg, 40, pixelsByLibjpeg(jpeg).values);
    }
}

TEST(MonochromeFilter, EncodesExactlyAroundTheLimitOfAPalette) {
    for (const std::uint8_t mostAlpha : {255, 254}) {
        for (const std::size_t values : {1U, 256U, 257U, 900U}) {
            RgbaImage image(30, 30);
            for (std::size_t index = 0; index < image.pixelCount(); ++index) {
                const std::size_t value = index % values;
                const Rgba pixel{static_cast<std::uint8_t>(value), 7,
                                 static_cast<std::uint8_t>(value >> 8), mostAlpha};
                std::copy(pixel.begin(), pixel.end(), image.bytes.get() + index * pixel.size());
            }
            const auto png = encodePng(image);
            ASSERT_TRUE(png);
            const Pixels read = pixelsByLibpng(*png);
            ASSERT_EQ(read.values.size(), image.pixelCount());
            EXPECT_EQ(0, std::memcmp(read.values.data(), image.bytes.get(), 30 * 30 * 4))
                << values << " values";
        }
    }
}

TEST(MonochromeFilter, DamageGivesNothing) {
    const std::string png = SamplePng({PNG_COLOR_TYPE_RGB, 8, true, false}).bytes();
    const std::string jpeg = jpegOf(gradient());
    for (const std::string& sound : {png, jpeg}) {
        ASSERT_TRUE(decodes(sound));
        for (std::size_t size = 0; size < sound.size() - 1; size += 3)
            ASSERT_FALSE(decodes(sound.substr(0, size))) << size;
    }
    EXPECT_TRUE(decodes(pngOf({4, 4}, std::string(4 * 17, '\0'))));
    EXPECT_FALSE(decodes(pngOf({60000, 60000}, std::string(100, '\0'))));
    EXPECT_FALSE(decodes(pngOf({8000, 8000}, std::string(100, '\0'))));
    std::string hugeJpeg = jpeg;
    const std::size_t frame = jpeg.find("\xff\xc0");
    ASSERT_NE(frame, std::string::npos);
    hugeJpeg.replace(frame + 5, 4, "\xea\x60\xea\x60");
    EXPECT_FALSE(decodes(hugeJpeg));
    EXPECT_FALSE(decodes("no image at all"));
}

TEST(MonochromeFilter, WhatEveryDecoderPassesOverRefusesNothing) {
    const auto pngOf = [](bool isInterlaced, const std::string& transparency,
                          const std::string& data) {
        std::string file(pngSignature);
        PngHeader header{2, 2, 8, PngColorType::Palette};
        header.isInterlaced = isInterlaced;
        appendPngChunk(file, "IHDR", header.chunkData());
        appendPngChunk(file, "PLTE", "redGRN");
        if (!transparency.empty())
            appendPngChunk(file, "tRNS", transparency);
        for (std::size_t at = 0; at < data.size(); at += 50'000)
            appendPngChunk(file, "IDAT", data.substr(at, 50'000));
        appendPngChunk(file, "IEND", {});
        return file;
    };
    const std::string plain("\0\0\1\0\1\0", 6);
    const std::string passes("\0\0\0\1\0\1\0", 7); // the first, the sixth and the seventh
    std::string unpackable;
    for (const Rgba& pixel : samplePixels(50'000))
        unpackable.append(pixel.begin(), pixel.end());
    for (const auto& [isInterlaced, rows] : {std::pair(false, plain), std::pair(true, passes)}) {
        const std::string files[] = {
            pngOf(isInterlaced, "", deflated(rows, 15)),
            pngOf(isInterlaced, "\1\2\3", deflated(rows, 15)),
            pngOf(isInterlaced, "", deflated(rows + "surplus", 15)),
            pngOf(isInterlaced, "", deflated(rows, 15) + "surplus"),
            pngOf(isInterlaced, "", deflated(rows + unpackable, 15)),
        };
        for (const std::string& file : files) {
            const auto image = decodeImage(file);
            ASSERT_TRUE(image) << &file - files;
            EXPECT_EQ(std::string(reinterpret_cast<const char*>(image->bytes.get()), 16),
                      isInterlaced ? "red\xffGRN\xffGRN\xffred\xff"
                                   : "red\xffGRN\xffGRN\xffred\xff")
                << &file - files;
            EXPECT_FALSE(decodes(file.substr(0, file.size() - 9))) << &file - files;
        }
    }
}

TEST(MonochromeFilter, SurvivesMutatedFiles) {
    const auto palette = SamplePng({PNG_COLOR_TYPE_PALETTE, 4, true, true}).bytes();
    const auto deep = SamplePng({PNG_COLOR_TYPE_RGB_ALPHA, 16, false, false}).bytes();
    const auto crushed = CrushedPngFile{9, 9, true, false, 3}.bytes(samplePixels(81));
    const std::string sources[] = {palette, deep, crushed, jpegOf(gradient())};
    std::minstd_rand random(20);
    std::size_t refused = 0;
    for (int round = 0; round < 4000; ++round) {
        std::string file = sources[round % 4];
        for (auto count = 1 + random() % 3; count > 0; --count)
            file[random() % file.size()] = static_cast<char>(random() >> 7);
        // Checksums are made good again, so that the mutation reaches what lies behind them.
        std::string repaired(pngSignature);
        for (std::size_t at = 8; round % 4 < 3 && at + 12 <= file.size();) {
            const std::size_t length =
                std::min<std::size_t>(bigEndian32(file.substr(at)), file.size() - at - 12);
            appendPngChunk(repaired, file.substr(at + 4, 4), file.substr(at + 8, length));
            at += 12 + length;
        }
        const auto png =
            PosixMonochromeFilter().monochromePng(round % 4 < 3 ? repaired : file, 1, 0, 0);
        if (!png)
            ++refused;
        else
            ASSERT_TRUE(decodes(*png)) << round;
    }
    EXPECT_GT(refused, 1000U);
}

} // namespace dubrix
