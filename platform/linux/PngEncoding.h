#pragma once

#include "platform/linux/RgbaImage.h"

#include <optional>
#include <string>

namespace dubrix {

/// The image as an 8-bit PNG: RGB when every pixel is opaque, RGBA otherwise. Nothing when the
/// memory did not suffice.
///
/// Meant for remapped images, whose pixels have a few hundred values in all. Unfiltered, these
/// repeat so often that the fastest level of deflate packs them smaller than any of the row filters
/// would, by about a sixth, and sooner.
std::optional<std::string> encodePng(const RgbaImage& image);

} // namespace dubrix
