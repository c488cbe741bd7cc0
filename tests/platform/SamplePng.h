#pragma once

#include "tests/formats/CrushedPngFile.h"

#include <algorithm>
#include <cmath>
#include <png.h>
#include <random>

namespace dubrix {

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

} // namespace dubrix
