#include "looks/WindowPlace.h"

#include <QScreen>
#include <QWindow>

namespace dubrix {

std::optional<QPoint> placeBeside(const QRect& available, const QSize& window, Side side,
                                  int frame) {
    const int width = 2 * window.width() + 3 * frame;
    const int height = window.height() + 2 * frame;
    if (width > available.width() || height > available.height())
        return std::nullopt;
    const int left = available.x() + (available.width() - width) / 2 + frame;
    const int beside = side == Side::Right ? window.width() + frame : 0;
    return QPoint(left + beside, available.y() + (available.height() - window.height()) / 2);
}

bool standBeside(QWindow& window, Side side) {
    const auto place = placeBeside(window.screen()->availableGeometry(), window.size(), side);
    if (place)
        window.setPosition(*place);
    return place.has_value();
}

void bringToFront(QWindow& window) {
    if (window.windowStates() & Qt::WindowMinimized)
        window.showNormal();
    window.raise();
    window.requestActivate();
}

} // namespace dubrix
