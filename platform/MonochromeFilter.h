#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

/// Remaps images onto shades of one colour.
class MonochromeFilter {
public:
    virtual ~MonochromeFilter() = default;

    /// Decodes `image` (the bytes of an image file), remaps every pixel onto shades of the colour
    /// (components 0.0 to 1.0, gamma-encoded sRGB, used as given) at full intensity, and returns
    /// the bytes of an 8-bit PNG of the same pixel size. Nothing when the bytes do not decode.
    /// Any thread.
    virtual std::optional<std::string> monochromePng(std::string_view image, float red, float green,
                                                     float blue) const = 0;
};

} // namespace dubrix
