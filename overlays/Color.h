#pragma once

namespace dubrix {

/// Components and opacity from 0 to 1, not premultiplied.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;

    bool operator==(const Color&) const = default;
};

} // namespace dubrix
