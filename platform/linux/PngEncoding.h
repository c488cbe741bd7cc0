#pragma once

#include "platform/linux/RgbaImage.h"

#include <optional>
#include <string>

namespace dubrix {

/// The image as an 8-bit PNG: RGB when every pixel is opaque, RGBA otherwise. Tuned for speed first
/// (see bench/). Nothing when the memory did not suffice.
std::optional<std::string> encodePng(const RgbaImage& image);

} // namespace dubrix
