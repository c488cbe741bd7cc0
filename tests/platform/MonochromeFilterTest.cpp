#include "platform/linux/ImageDecoding.h"
#include "platform/linux/LinuxMonochromeFilter.h"
#include "platform/linux/MonochromeRemap.h"
#include "tests/formats/CrushedPngFile.h"

#include <QBuffer>
#include <QImage>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <png.h>
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

/// Expects `actual` to be the remap of `source` within 1/255, with the same alpha.
void expectRemapped(const Rgba& source, const Color& color, const Rgba& actual) {
    const double luminance = 0.2126 * linear(source[0] / 255.0) +
                             0.7152 * linear(source[1] / 255.0) +
                             0.0722 * linear(source[2] / 255.0);
    for (std::size_t sample = 0; sample < 3; ++sample) {
        const double exact = 255 * encoded(luminance * linear(double{color[sample]}));
        ASSERT_NEAR(actual[sample], exact, 1.0) << int{source[0]} << ' ' << int{source[1]} << ' '
                                                << int{source[2]} << ", component " << sample;
    }
    ASSERT_EQ(actual[3], source[3]);
}

Rgba pixelAt(const QImage& image, std::size_t index) {
    const auto width = static_cast<std::size_t>(image.width());
    const uchar* const at =
        image.constScanLine(static_cast<int>(index / width)) + index % width * 4;
    return {at[0], at[1], at[2], at[3]};
}

/// Expects the filter to turn the file into a PNG of these pixels, remapped.
void expectTinted(const std::string& file, std::uint32_t width, const std::vector<Rgba>& pixels) {
    const Color color{0.8F, 0.2F, 1.0F};
    const auto png = LinuxMonochromeFilter().monochromePng(file, color[0], color[1], color[2]);
    ASSERT_TRUE(png);
    const QByteArray bytes(png->data(), static_cast<qsizetype>(png->size()));
    const QImage image = QImage::fromData(bytes, "PNG").convertToFormat(QImage::Format_RGBA8888);
    ASSERT_EQ(image.width(), static_cast<int>(width));
    ASSERT_EQ(image.height(), static_cast<int>(pixels.size() / width));
    for (std::size_t index = 0; index < pixels.size(); ++index)
        ASSERT_NO_FATAL_FAILURE(expectRemapped(pixels[index], color, pixelAt(image, index)))
            << "pixel " << index;
}

struct PngKind {
    int colorType;
    int depth;
    bool isInterlaced;
    bool hasTransparency; // a palette's alphas or a transparent colour
};

/// A PNG of one kind from random rows. Its transparent colour, if any, is that of its first pixel.
struct SamplePng {
    static constexpr std::uint32_t width = 21, height = 11;

    explicit SamplePng(const PngKind& imageKind) : kind(imageKind) {
        std::minstd_rand random(static_cast<unsigned>(kind.colorType * 16 + kind.depth));
        // A palette has four entries, or two for one bit.
        const bool isIndexed = kind.colorType == PNG_COLOR_TYPE_PALETTE;
        const int mask = !isIndexed || kind.depth <= 2 ? 0xff : (kind.depth == 4 ? 0x33 : 0x03);
        for (std::string& row : rows) {
            row.resize((width * samples() * static_cast<unsigned>(kind.depth) + 7) / 8);
            for (char& byte : row)
                byte = static_cast<char>(random() >> 8 & static_cast<unsigned>(mask));
        }
        for (std::uint8_t index = 0; index < 4; ++index)
            palette[index] = {static_cast<std::uint8_t>(index * 70),
                              static_cast<std::uint8_t>(255 - index * 30), 100};
    }

    unsigned samples() const { return samplesPerPixel(static_cast<PngColorType>(kind.colorType)); }

    unsigned sampleAt(std::size_t pixel, unsigned sample) const {
        const std::string& row = rows[pixel / width];
        const std::size_t bit = (pixel % width * samples() + sample) * unsigned(kind.depth);
        const auto byte = [&row](std::size_t at) { return static_cast<unsigned char>(row[at]); };
        if (kind.depth == 16)
            return byte(bit / 8) * 256U + byte(bit / 8 + 1);
        return byte(bit / 8) >> (8 - unsigned(kind.depth) - bit % 8) & ((1U << kind.depth) - 1);
    }

    Rgba expectedAt(std::size_t pixel) const {
        if (kind.colorType == PNG_COLOR_TYPE_PALETTE) {
            const unsigned index = sampleAt(pixel, 0);
            const png_color& entry = palette[index];
            return {entry.red, entry.green, entry.blue,
                    kind.hasTransparency ? alphas[index] : std::uint8_t{255}};
        }
        const double most = std::ldexp(1, kind.depth) - 1;
        const bool isGrey = samples() < 3;
        const bool hasAlpha = samples() % 2 == 0;
        bool isKey = kind.hasTransparency;
        Rgba result{0, 0, 0, 255};
        for (unsigned sample = 0; sample < 4; ++sample) {
            if (sample == 3 && !hasAlpha)
                break;
            const unsigned stored = sample == 3 ? samples() - 1 : (isGrey ? 0 : sample);
            result[sample] =
                static_cast<std::uint8_t>(std::lround(sampleAt(pixel, stored) / most * 255));
            isKey = isKey && sampleAt(pixel, stored) == sampleAt(0, stored);
        }
        if (isKey)
            result[3] = 0;
        return result;
    }

    std::vector<Rgba> expected() const {
        std::vector<Rgba> pixels;
        for (std::size_t pixel = 0; pixel < std::size_t{width} * height; ++pixel)
            pixels.push_back(expectedAt(pixel));
        return pixels;
    }

    std::string bytes() {
        std::string file;
        png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        png_set_write_fn(
            png, &file,
            [](png_structp writing, png_bytep data, std::size_t size) {
                static_cast<std::string*>(png_get_io_ptr(writing))
                    ->append(reinterpret_cast<const char*>(data), size);
            },
            nullptr);
        png_set_IHDR(png, info, width, height, kind.depth, kind.colorType,
                     kind.isInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_set_gAMA(png, info, 1.0); // to be ignored
        if (kind.colorType == PNG_COLOR_TYPE_PALETTE)
            png_set_PLTE(png, info, palette.data(), 1 << std::min(kind.depth, 2));
        png_color_16 key{};
        key.gray = static_cast<png_uint_16>(sampleAt(0, 0));
        if (samples() >= 3) {
            key.red = key.gray;
            key.green = static_cast<png_uint_16>(sampleAt(0, 1));
            key.blue = static_cast<png_uint_16>(sampleAt(0, 2));
        }
        if (kind.hasTransparency)
            png_set_tRNS(png, info, alphas.data(), 1 << std::min(kind.depth, 2), &key);
        std::vector<png_bytep> pointers;
        for (std::string& row : rows)
            pointers.push_back(reinterpret_cast<png_bytep>(row.data()));
        png_write_info(png, info);
        png_write_image(png, pointers.data());
        png_write_end(png, info);
        png_destroy_write_struct(&png, &info);
        return file;
    }

    PngKind kind;
    std::array<std::string, height> rows;
    std::array<png_color, 4> palette{};
    std::array<png_byte, 4> alphas{255, 128, 1, 0};
};

std::string jpegOf(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "JPEG", 100);
    return bytes.toStdString();
}

QImage gradient(QImage::Format format) {
    QImage image(40, 24, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x * 6, y * 10, 255 - x * 3));
    return image.convertToFormat(format);
}

bool decodes(const std::string& bytes) {
    return decodeImage(bytes).has_value();
}

} // namespace

TEST(MonochromeRemap, FollowsTheFormula) {
    for (const Color& color : {Color{1, 1, 1}, Color{1, 0.4F, 0}, Color{0.02F, 0.2F, 0.6F}}) {
        const MonochromeRemap remap(color[0], color[1], color[2]);
        for (unsigned value = 0; value < 1U << 24; value += 1021) {
            const Rgba source{static_cast<std::uint8_t>(value >> 16),
                              static_cast<std::uint8_t>(value >> 8),
                              static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value)};
            Rgba pixel = source;
            remap.apply(pixel.data(), 1);
            ASSERT_NO_FATAL_FAILURE(expectRemapped(source, color, pixel));
        }
    }
}

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
    for (const auto format : {QImage::Format_RGB32, QImage::Format_Grayscale8}) {
        const std::string jpeg = jpegOf(gradient(format));
        const QImage same = QImage::fromData(QByteArray::fromStdString(jpeg), "JPEG")
                                .convertToFormat(QImage::Format_RGBA8888);
        std::vector<Rgba> pixels;
        for (std::size_t index = 0; index < 40 * 24; ++index)
            pixels.push_back(pixelAt(same, index));
        expectTinted(jpeg, 40, pixels);
    }
}

TEST(MonochromeFilter, DamageGivesNothing) {
    const std::string png = SamplePng({PNG_COLOR_TYPE_RGB, 8, true, false}).bytes();
    const std::string jpeg = jpegOf(gradient(QImage::Format_RGB32));
    for (const std::string& sound : {png, jpeg}) {
        ASSERT_TRUE(decodes(sound));
        for (std::size_t size = 0; size < sound.size() - 1; size += 3)
            ASSERT_FALSE(decodes(sound.substr(0, size))) << size;
    }
    const auto pngOf = [](std::uint32_t width, std::uint32_t height, std::size_t bytes) {
        std::string file(pngSignature);
        appendPngChunk(file, "IHDR", PngHeader{width, height}.chunkData());
        appendPngChunk(file, "IDAT", deflated(std::string(bytes, '\0'), 15));
        appendPngChunk(file, "IEND", {});
        return file;
    };
    EXPECT_TRUE(decodes(pngOf(4, 4, 4 * 17)));
    EXPECT_FALSE(decodes(pngOf(4, 4, std::size_t{32} << 20))) << "more data than declared";
    EXPECT_FALSE(decodes(pngOf(60000, 60000, 100)));
    EXPECT_FALSE(decodes(pngOf(8000, 8000, 100)));
    std::string hugeJpeg = jpeg;
    const std::size_t frame = jpeg.find("\xff\xc0");
    ASSERT_NE(frame, std::string::npos);
    hugeJpeg.replace(frame + 5, 4, "\xea\x60\xea\x60");
    EXPECT_FALSE(decodes(hugeJpeg));
    EXPECT_FALSE(decodes("no image at all"));
}

TEST(MonochromeFilter, SurvivesMutatedFiles) {
    const auto palette = SamplePng({PNG_COLOR_TYPE_PALETTE, 4, true, true}).bytes();
    const auto deep = SamplePng({PNG_COLOR_TYPE_RGB_ALPHA, 16, false, false}).bytes();
    const auto crushed = CrushedPngFile{9, 9, true, false, 3}.bytes(samplePixels(81));
    const std::string sources[] = {palette, deep, crushed, jpegOf(gradient(QImage::Format_RGB32))};
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
            LinuxMonochromeFilter().monochromePng(round % 4 < 3 ? repaired : file, 1, 0, 0);
        if (!png)
            ++refused;
        else
            ASSERT_TRUE(decodes(*png)) << round;
    }
    EXPECT_GT(refused, 1000U);
}

} // namespace dubrix
