#pragma once

#include "formats/images/RgbaImage.h"

#include <array>
#include <optional>
#include <vector>

namespace dubrix {

/// The same pixels as a list of the values that occur and one byte a pixel into it.
struct IndexedImage {
    std::vector<std::array<std::uint8_t, RgbaImage::pixelSize>> palette; // at most 256
    std::unique_ptr<std::uint8_t[]> indices;                             // rows from the top
};

/// Nothing when there are more than 256 different pixels.
std::optional<IndexedImage> indexedImage(const RgbaImage& image);

} // namespace dubrix
