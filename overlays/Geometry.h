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

} // namespace dubrix
