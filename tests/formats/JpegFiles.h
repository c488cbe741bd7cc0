#pragma once

#include "tests/formats/ImageFiles.h"

#include <cstdio> // jpeglib.h needs FILE
#include <jpeglib.h>

namespace dubrix {

struct JpegKind {
    J_COLOR_SPACE colors = JCS_RGB;
    bool isProgressive = false;
    bool isAdobes = false; ///< marked as with inks inverted
};

/// A JPEG in the best quality, of these samples line by line.
inline std::string jpegOf(const JpegKind& kind, std::string samples, unsigned width) {
    jpeg_compress_struct writing{};
    jpeg_error_mgr errors{};
    writing.err = jpeg_std_error(&errors);
    jpeg_create_compress(&writing);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&writing, &bytes, &size);
    writing.input_components = kind.colors == JCS_CMYK ? 4 : kind.colors == JCS_RGB ? 3 : 1;
    const unsigned rowSize = width * static_cast<unsigned>(writing.input_components);
    writing.image_width = width;
    writing.image_height = static_cast<JDIMENSION>(samples.size() / rowSize);
    writing.in_color_space = kind.colors;
    jpeg_set_defaults(&writing);
    jpeg_set_quality(&writing, 100, TRUE);
    if (kind.isProgressive)
        jpeg_simple_progression(&writing);
    writing.write_Adobe_marker = kind.isAdobes;
    jpeg_start_compress(&writing, TRUE);
    for (std::size_t at = 0; at < samples.size(); at += rowSize) {
        JSAMPROW row = reinterpret_cast<JSAMPROW>(samples.data() + at);
        jpeg_write_scanlines(&writing, &row, 1);
    }
    jpeg_finish_compress(&writing);
    jpeg_destroy_compress(&writing);
    std::string file(reinterpret_cast<const char*>(bytes), size);
    std::free(bytes);
    return file;
}

} // namespace dubrix
