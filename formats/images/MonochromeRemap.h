#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

/// Remaps pixels onto shades of one colour, in linear light:
///
///     Y  = 0.2126 lin(R) + 0.7152 lin(G) + 0.0722 lin(B)      luminance, ITU-R BT.709-6, table 4
///     C' = enc(Y * lin(C))                                    for each component C of the colour
///
/// where lin and enc are the transfer function of sRGB and its inverse (IEC 61966-2-1). White turns
/// into the colour itself and black stays black. Alpha is kept, and colours must not be
/// premultiplied by it, so edges get no halo.
///
/// Results are within 1/255 of the formula. Per pixel there are four table look-ups: one weighted
/// luminance for each component, then a shade for the sum.
class MonochromeRemap {
public:
    /// Components are gamma-encoded sRGB from 0 to 1; what lies outside is clamped, not-a-number
    /// counts as 0.
    MonochromeRemap(float red, float green, float blue);

    /// Remaps 8-bit RGBA pixels in place.
    void apply(std::uint8_t* rgba, std::size_t pixelCount) const;

    /// Whether every visible pixel (of an alpha above 0) is a shade of the colour already: within
    /// one step of 255 in each component of enc(t * lin(C)) for one t from 0 to 1. That is true of
    /// whatever `apply` has left, whose components are rounded and so within half a step.
    bool holdsShadesOnly(const std::uint8_t* rgba, std::size_t pixelCount) const;

private:
    /// Luminance is cut into this many equal steps. sRGB is steepest next to black, where 3295
    /// steps make one of 255 (12.92 * 255): with more, the grey levels map onto themselves.
    static constexpr std::uint32_t luminanceSteps = 4095;

    /// The part of the scale from 0 to 1 (the t of the shades) on which a component is within a
    /// step of a level; `least` is above `most` where it nowhere is.
    struct Reach {
        float least = 0;
        float most = 0;
    };

    void fillComponent(std::size_t component, float value);
    void fillReaches(std::size_t component, double linear);
    bool isShade(const std::uint8_t* pixel) const;

    /// For each luminance step red, green, blue and 0 in the memory order of a pixel.
    std::array<std::array<std::uint8_t, 4>, luminanceSteps + 1> shades_{};
    /// For each component, for each of its levels.
    std::array<std::array<Reach, 256>, 3> reaches_{};
};

/// An image file (see decodeImage for what is read) remapped onto shades of a colour (see
/// MonochromeRemap), as a PNG; nothing when it does not decode. An image of nothing but shades of
/// the colour keeps its pixels, and a PNG that could stand for the result itself all its bytes: see
/// MonochromeFilter.
std::optional<std::string> monochromePng(std::string_view image, float red, float green,
                                         float blue);

} // namespace dubrix
