#include "screens/colors/ColorSpaces.h"

#include <algorithm>

namespace dubrix {

namespace {

/// In sixths of the circle, red at 0; `chroma` is the largest component less the smallest.
double sixthsOfHue(const Color& color, double largest, double chroma) {
    if (largest == color.red) {
        const double fromRed = (color.green - color.blue) / chroma;
        return fromRed < 0 ? fromRed + 6 : fromRed;
    }
    if (largest == color.green)
        return (color.blue - color.red) / chroma + 2;
    return (color.red - color.green) / chroma + 4;
}

} // namespace

QColor drawable(const Color& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

HueSaturationBrightness hueSaturationBrightness(const Color& color) {
    const auto [smallest, largest] = std::minmax({color.red, color.green, color.blue});
    const double chroma = largest - smallest;
    return {.hue = chroma > 0 ? sixthsOfHue(color, largest, chroma) / 6 : 0,
            .saturation = largest > 0 ? chroma / largest : 0,
            .brightness = largest};
}

} // namespace dubrix
