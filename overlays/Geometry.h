#pragma once

namespace dubrix {

/// Lengths are in points; x grows to the right and y downwards.
struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

struct Rect {
    Point origin;
    Size size;

    bool operator==(const Rect&) const = default;
};

/// Components and opacity from 0 to 1, not premultiplied.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 0;

    bool operator==(const Color&) const = default;
};

} // namespace dubrix
