#pragma once

#include "formats/images/RgbaImage.h"

#include <optional>
#include <string>

namespace dubrix {

/// The image as an 8-bit PNG: with a palette when it has 256 different pixels at most, else RGB
/// when every pixel is opaque and RGBA when not. Nothing when the memory did not suffice.
///
/// Meant for remapped images, whose pixels have a few hundred values in all. A palette leaves a
/// quarter of the bytes to deflate. Unfiltered rows repeat so often that the fastest level packs
/// them smaller, and sooner, than with any of the row filters.
std::optional<std::string> encodePng(const RgbaImage& image);

} // namespace dubrix
