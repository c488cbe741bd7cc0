#pragma once

#include "tests/formats/CrushedPngFile.h"

#include <cstring>
#include <png.h>

namespace dubrix {

struct Pixels {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<Rgba> values = {};
};

/// What libpng's own reading of whole images makes of a PNG; empty for what it refuses.
inline Pixels pixelsByLibpng(const std::string& file) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&image, file.data(), file.size()))
        return {};
    image.format = PNG_FORMAT_RGBA;
    Pixels pixels{image.width, image.height,
                  std::vector<Rgba>(std::size_t{image.width} * image.height)};
    if (!png_image_finish_read(&image, nullptr, pixels.values.data(), 0, nullptr))
        return {};
    return pixels;
}

/// A PNG of these rows, each with its filter in front.
inline std::string pngOf(const PngHeader& header, const std::string& rows,
                         const std::string& palette = "") {
    std::string file(pngSignature);
    appendPngChunk(file, "IHDR", header.chunkData());
    if (!palette.empty())
        appendPngChunk(file, "PLTE", palette);
    appendPngChunk(file, "IDAT", deflated(rows, 15));
    appendPngChunk(file, "IEND", {});
    return file;
}

/// A PNG of eight bits a sample, red, green, blue and alpha.
inline std::string pngOf(const std::vector<Rgba>& pixels, std::uint32_t width) {
    std::string rows;
    for (std::size_t at = 0; at < pixels.size(); ++at) {
        if (at % width == 0)
            rows.push_back('\0');
        rows.append(pixels[at].begin(), pixels[at].end());
    }
    return pngOf({width, static_cast<std::uint32_t>(pixels.size() / width)}, rows);
}

} // namespace dubrix
