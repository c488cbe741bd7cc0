#pragma once

#include "tests/formats/StandardImages.h"

#include <cstdio>
#include <jpeglib.h>

namespace dubrix {

/// A JPEG of the pixels' colours, or of their first samples as greys, in the best quality.
inline std::string jpegOf(const Pixels& pixels, bool isGrey = false) {
    jpeg_compress_struct writing{};
    jpeg_error_mgr errors{};
    writing.err = jpeg_std_error(&errors);
    jpeg_create_compress(&writing);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&writing, &bytes, &size);
    writing.image_width = pixels.width;
    writing.image_height = pixels.height;
    writing.input_components = isGrey ? 1 : 3;
    writing.in_color_space = isGrey ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&writing);
    jpeg_set_quality(&writing, 100, TRUE);
    jpeg_start_compress(&writing, TRUE);
    for (std::size_t line = 0; line < pixels.height; ++line) {
        std::vector<unsigned char> row;
        for (std::size_t column = 0; column < pixels.width; ++column) {
            const Rgba& pixel = pixels.values[line * pixels.width + column];
            row.insert(row.end(), pixel.begin(), pixel.begin() + writing.input_components);
        }
        JSAMPROW rows = row.data();
        jpeg_write_scanlines(&writing, &rows, 1);
    }
    jpeg_finish_compress(&writing);
    jpeg_destroy_compress(&writing);
    std::string file(reinterpret_cast<const char*>(bytes), size);
    std::free(bytes);
    return file;
}

/// What libjpeg makes of a JPEG.
inline Pixels pixelsByLibjpeg(const std::string& file) {
    jpeg_decompress_struct reading{};
    jpeg_error_mgr errors{};
    reading.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&reading);
    jpeg_mem_src(&reading, reinterpret_cast<const unsigned char*>(file.data()), file.size());
    jpeg_read_header(&reading, TRUE);
    reading.out_color_space = JCS_RGB;
    jpeg_start_decompress(&reading);
    Pixels pixels{reading.output_width, reading.output_height};
    std::vector<unsigned char> row(std::size_t{3} * pixels.width);
    while (reading.output_scanline < pixels.height) {
        JSAMPROW rows = row.data();
        jpeg_read_scanlines(&reading, &rows, 1);
        for (std::size_t at = 0; at < row.size(); at += 3)
            pixels.values.push_back({row[at], row[at + 1], row[at + 2], 255});
    }
    jpeg_finish_decompress(&reading);
    jpeg_destroy_decompress(&reading);
    return pixels;
}

} // namespace dubrix
