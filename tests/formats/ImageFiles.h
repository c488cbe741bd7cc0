#pragma once

#include "formats/images/ImageDecoding.h"
#include "formats/images/PngChunks.h"
#include "tests/support/Deflated.h"

#include <algorithm>
#include <array>
#include <random>
#include <vector>

namespace dubrix {

using Rgba = std::array<std::uint8_t, 4>;

/// Pixels with every alpha, some invisible and some opaque.
inline std::vector<Rgba> samplePixels(std::size_t count) {
    std::vector<Rgba> pixels(count);
    std::mt19937 random(7);
    for (Rgba& pixel : pixels) {
        for (std::uint8_t& sample : pixel)
            sample = static_cast<std::uint8_t>(random());
        if (random() % 4 == 0)
            pixel[3] = random() % 2 == 0 ? 0 : 255;
    }
    return pixels;
}

/// The pixels of a file; empty for what is not decoded.
inline std::vector<Rgba> decoded(const std::string& file) {
    const auto image = decodeImage(file);
    std::vector<Rgba> pixels(image ? image->pixelCount() : 0);
    for (std::size_t at = 0; at < pixels.size(); ++at)
        std::copy_n(image->bytes.get() + 4 * at, 4, pixels[at].begin());
    return pixels;
}

/// A PNG of these rows, each with its filter in front. `chunks` stand before them.
inline std::string pngOf(const PngHeader& header, const std::string& rows,
                         const std::vector<PngChunk>& chunks = {}) {
    std::string file(pngSignature);
    appendPngChunk(file, "IHDR", header.chunkData());
    for (const PngChunk& chunk : chunks)
        appendPngChunk(file, chunk.type, chunk.data);
    appendPngChunk(file, "IDAT", deflated(rows, MAX_WBITS));
    appendPngChunk(file, "IEND", {});
    return file;
}

/// Unfiltered rows of eight bits a sample.
inline std::string rowsOf(const std::vector<Rgba>& pixels, std::uint32_t width) {
    std::string rows;
    for (std::size_t at = 0; at < pixels.size(); ++at) {
        if (at % width == 0)
            rows.push_back('\0');
        rows.append(pixels[at].begin(), pixels[at].end());
    }
    return rows;
}

inline std::string pngOf(const std::vector<Rgba>& pixels, std::uint32_t width) {
    return pngOf({width, static_cast<std::uint32_t>(pixels.size() / width)}, rowsOf(pixels, width));
}

/// Writes images the way the phone's tools do.
struct CrushedPng {
    bool ignoresAlpha = false;
    std::size_t dataChunks = 1;
    bool hasZlibFrame = false;

    std::string of(std::vector<Rgba> pixels, std::uint32_t width) const {
        for (Rgba& pixel : pixels) {
            const int alpha = ignoresAlpha ? 255 : pixel[3];
            for (std::size_t sample = 0; sample < 3; ++sample)
                pixel[sample] = static_cast<std::uint8_t>((pixel[sample] * alpha + 127) / 255);
            std::swap(pixel[0], pixel[2]);
        }
        return of({width, static_cast<std::uint32_t>(pixels.size() / width)},
                  rowsOf(pixels, width));
    }
    std::string of(const PngHeader& header, const std::string& rows) const {
        const std::string flags{hasZlibFrame ? '\x40' : '\x50', 0, '\x20',
                                ignoresAlpha ? '\6' : '\2'};
        const std::string packed = deflated(rows, hasZlibFrame ? MAX_WBITS : -MAX_WBITS);
        std::string file(pngSignature);
        appendPngChunk(file, "CgBI", flags);
        appendPngChunk(file, "IHDR", header.chunkData());
        appendPngChunk(file, "gAMA", std::string("\0\1\x86\xa0", 4));
        const std::size_t share = packed.size() / dataChunks;
        for (std::size_t index = 0; index + 1 < dataChunks; ++index)
            appendPngChunk(file, "IDAT", packed.substr(index * share, share));
        appendPngChunk(file, "IDAT", packed.substr((dataChunks - 1) * share));
        appendPngChunk(file, "IEND", {});
        return file;
    }
};

} // namespace dubrix
