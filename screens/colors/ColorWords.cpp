#include "screens/colors/ColorWords.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace dubrix {

namespace {

QString nameOfGray(double lightness) {
    if (lightness < 0.1)
        return ColorWords::tr("black");
    if (lightness < 0.3)
        return ColorWords::tr("dark gray");
    if (lightness < 0.7)
        return ColorWords::tr("gray");
    return lightness < 0.95 ? ColorWords::tr("light gray") : ColorWords::tr("white");
}

/// Twelve names round the circle, each for the thirty degrees about its middle.
QString nameOfHue(double hue) {
    const std::array names = {
        ColorWords::tr("red"),          ColorWords::tr("orange"),   ColorWords::tr("yellow"),
        ColorWords::tr("yellow green"), ColorWords::tr("green"),    ColorWords::tr("sea green"),
        ColorWords::tr("cyan"),         ColorWords::tr("sky blue"), ColorWords::tr("blue"),
        ColorWords::tr("violet"),       ColorWords::tr("magenta"),  ColorWords::tr("rose")};
    return names[static_cast<std::size_t>(std::lround(hue * 12)) % names.size()];
}

QString shaded(double lightness, double chroma, const QString& name) {
    if (lightness > 0.75)
        return ColorWords::tr("pale %1").arg(name);
    if (lightness < 0.15)
        return ColorWords::tr("very dark %1").arg(name);
    const QString shade = chroma < 0.25 ? ColorWords::tr("grayish %1").arg(name) : name;
    if (lightness < 0.35)
        return ColorWords::tr("dark %1").arg(shade);
    return lightness > 0.55 ? ColorWords::tr("light %1").arg(shade) : shade;
}

} // namespace

QString ColorWords::componentsOf(const QColor& color) {
    return tr("Red %1, green %2, blue %3").arg(color.red()).arg(color.green()).arg(color.blue());
}

QString ColorWords::nameOf(const QColor& color) {
    const auto [smallest, largest] =
        std::minmax({double(color.redF()), double(color.greenF()), double(color.blueF())});
    const double lightness = (smallest + largest) / 2;
    const double chroma = largest - smallest;
    if (chroma < 0.05)
        return nameOfGray(lightness);
    return shaded(lightness, chroma, nameOfHue(double(color.hsvHueF())));
}

} // namespace dubrix
