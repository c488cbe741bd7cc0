#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

/// An image file (see decodeImage for what is read) remapped onto shades of a colour (see
/// MonochromeRemap), as a PNG; nothing when it does not decode. An image of nothing but shades of
/// the colour keeps its pixels, and a PNG that could stand for the result itself all its bytes: see
/// MonochromeFilter.
std::optional<std::string> monochromePng(std::string_view image, float red, float green,
                                         float blue);

} // namespace dubrix
