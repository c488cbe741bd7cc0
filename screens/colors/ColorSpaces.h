#pragma once

#include "overlays/Color.h"

#include <QColor>

namespace dubrix {

QColor drawable(const Color& color);

/// Hue from 0.0 up to, but not including, 1.0; the others from 0.0 to 1.0.
struct HueSaturationBrightness {
    double hue = 0;
    double saturation = 0;
    double brightness = 0;

    auto operator<=>(const HueSaturationBrightness&) const = default;
};

/// The hexagonal decomposition: brightness is the largest component, saturation what the smallest
/// lacks to it, relative to it. Hue is 0 for a grey, saturation 0 for black, too.
HueSaturationBrightness hueSaturationBrightness(const Color& color);

} // namespace dubrix
