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
    /// the bytes of a PNG of at most 8 bits a sample and the same pixel size. White becomes the
    /// colour itself, every other pixel its linear luminance times the colour within 1 of 255 in
    /// each component; alpha stays. Nothing when the bytes do not decode. Any thread.
    ///
    /// The remap is a projection, so that a file may be remapped any number of times with the
    /// outcome of once: an image stays as it is when each of its visible pixels, those of an alpha
    /// above 0, is a shade of the colour already, that is within one step of 255 in each component
    /// of some part from 0 to 1 of the colour's linear light. If it is a standard PNG of at most
    /// 8 bits a sample and without chunks that change its colours, the result is `image` byte for
    /// byte; otherwise (the phone's crushed PNG, 16 bits, JPEG) a PNG of the decoded pixels.
    virtual std::optional<std::string> monochromePng(std::string_view image, float red, float green,
                                                     float blue) const = 0;
};

} // namespace dubrix
