#pragma once

#include "formats/images/PngChunks.h"

#include <array>
#include <cstdlib>
#include <vector>
#include <zlib.h>

namespace dubrix {

using Rgba = std::array<std::uint8_t, 4>;

/// Deflates with an own frame: `windowBits` negative for none.
inline std::string deflated(const std::string& bytes, int windowBits) {
    z_stream stream{};
    deflateInit2(&stream, 9, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY);
    std::string packed(deflateBound(&stream, bytes.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

/// Writes images the way the phone's tools do.
struct CrushedPngFile {
    std::uint32_t width = 1;
    std::uint32_t height = 1;
    bool isInterlaced = false;
    bool ignoresAlpha = false;
    std::size_t dataChunks = 1;
    bool hasZlibFrame = false;
    std::string extraRows = {}; // after the last pixel, in the same stream

    std::string bytes(const std::vector<Rgba>& pixels) const {
        std::string rows;
        for (const auto& [left, top, stepX, stepY] : grids()) {
            std::string above;
            for (std::uint32_t y = top; y < height && left < width; y += stepY) {
                std::string row;
                for (std::uint32_t x = left; x < width; x += stepX)
                    row += crushed(pixels[y * width + x]);
                above.resize(row.size());
                rows += filtered(row, above, static_cast<char>(y / stepY % 5));
                above = row;
            }
        }
        const std::string flags{hasZlibFrame ? '\x40' : '\x50', 0, '\x20',
                                ignoresAlpha ? '\6' : '\2'};
        PngHeader header{width, height};
        header.isInterlaced = isInterlaced;
        return assembled(flags, header, deflated(rows + extraRows, hasZlibFrame ? 15 : -15));
    }

    std::string assembled(const std::string& flags, const PngHeader& header,
                          const std::string& packed) const {
        std::string file(pngSignature);
        appendPngChunk(file, "CgBI", flags);
        appendPngChunk(file, "IHDR", header.chunkData());
        appendPngChunk(file, "gAMA", std::string("\0\1\x86\xa0", 4));
        if (dataChunks > 1)
            appendPngChunk(file, "iDOT", std::string(28, '\0'));
        const std::size_t share = packed.size() / dataChunks;
        for (std::size_t index = 0; index + 1 < dataChunks; ++index)
            appendPngChunk(file, "IDAT", packed.substr(index * share, share));
        appendPngChunk(file, "IDAT", packed.substr((dataChunks - 1) * share));
        appendPngChunk(file, "IEND", {});
        return file;
    }

private:
    std::vector<std::array<std::uint32_t, 4>> grids() const {
        if (!isInterlaced)
            return {{0, 0, 1, 1}};
        return {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};
    }

    std::string crushed(const Rgba& pixel) const {
        const int alpha = ignoresAlpha ? 255 : pixel[3];
        std::string bytes;
        for (const std::size_t sample : {2U, 1U, 0U})
            bytes.push_back(static_cast<char>((pixel[sample] * alpha + 127) / 255));
        bytes.push_back(static_cast<char>(pixel[3]));
        return bytes;
    }

    static std::string filtered(const std::string& row, const std::string& above, char filter) {
        std::string result(1, filter);
        for (std::size_t index = 0; index < row.size(); ++index) {
            const auto byteOf = [index](const std::string& bytes, std::size_t back) {
                return index < back ? 0 : static_cast<unsigned char>(bytes[index - back]);
            };
            const int a = byteOf(row, 4), b = byteOf(above, 0), c = byteOf(above, 4);
            const int p = a + b - c;
            const int pa = std::abs(p - a), pb = std::abs(p - b), pc = std::abs(p - c);
            const int predictions[] = {0, a, b, (a + b) / 2,
                                       pa <= pb && pa <= pc ? a : (pb <= pc ? b : c)};
            result.push_back(static_cast<char>(row[index] - predictions[static_cast<int>(filter)]));
        }
        return result;
    }
};

/// Pixels with every alpha, some invisible and some opaque.
inline std::vector<Rgba> samplePixels(std::size_t count) {
    std::vector<Rgba> pixels(count);
    std::uint32_t state = 7;
    for (Rgba& pixel : pixels) {
        for (std::uint8_t& sample : pixel) {
            state = state * 1664525 + 1013904223;
            sample = static_cast<std::uint8_t>(state >> 24);
        }
        if (state >> 30 == 3)
            pixel[3] = pixel[3] % 2 == 0 ? 0 : 255;
    }
    return pixels;
}

} // namespace dubrix
