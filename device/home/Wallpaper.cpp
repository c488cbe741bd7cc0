#include "device/home/Wallpaper.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>
#include <numbers>

namespace dubrix {

namespace {

constexpr int edge = 1000;

struct Colors {
    QColor zenith;
    QColor horizon;
    QColor glow;
    QColor slopes[4];
};

Colors colorsFor(bool dark) {
    if (dark)
        return {{0x0c, 0x0d, 0x22},
                {0x2b, 0x1f, 0x52},
                {0x7a, 0x4f, 0xc4, 90},
                {{0x25, 0x1d, 0x4b}, {0x1d, 0x19, 0x40}, {0x16, 0x14, 0x33}, {0x0f, 0x0f, 0x26}}};
    return {{0xc9, 0xdd, 0xff},
            {0xff, 0xee, 0xe4},
            {0xff, 0xff, 0xff, 200},
            {{0xee, 0xe2, 0xf8}, {0xe0, 0xd8, 0xf6}, {0xd2, 0xcf, 0xf4}, {0xc6, 0xc8, 0xf2}}};
}

/// The line of a slope is the sum of two waves, so that none looks like the next.
QPainterPath slope(int number) {
    const double level = 560 + 115 * number;
    QPainterPath path(QPointF(-5, edge + 5));
    for (int x = -5; x <= edge + 5; x += 5) {
        const double part = x * 2 * std::numbers::pi / edge;
        path.lineTo(x, level - 70 * std::sin(part * (0.8 + 0.17 * number) + 1.9 * number + 0.4) -
                           26 * std::sin(part * (2.1 - 0.23 * number) + 0.7 * number));
    }
    path.lineTo(edge + 5, edge + 5);
    path.closeSubpath();
    return path;
}

} // namespace

Wallpaper::Wallpaper() : QQuickImageProvider(Image, ForceAsynchronousImageLoading) {}

QImage Wallpaper::requestImage(const QString& id, QSize* size, const QSize&) {
    const Colors colors = colorsFor(id == QStringLiteral("dark"));
    QImage image(edge, edge, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, 700);
    sky.setColorAt(0, colors.zenith);
    sky.setColorAt(1, colors.horizon);
    painter.fillRect(image.rect(), sky);
    QRadialGradient glow(QPointF(640, 420), 380);
    QColor faded = colors.glow;
    faded.setAlpha(0);
    glow.setColorAt(0, colors.glow);
    glow.setColorAt(1, faded);
    painter.fillRect(image.rect(), glow);
    for (int number = 0; number < 4; ++number) {
        QLinearGradient ground(0, 450 + 115 * number, 0, edge + 100);
        ground.setColorAt(0, colors.slopes[number]);
        ground.setColorAt(1, colors.slopes[std::min(number + 1, 3)]);
        painter.fillPath(slope(number), ground);
    }
    if (size)
        *size = image.size();
    return image;
}

} // namespace dubrix
