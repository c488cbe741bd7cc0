#include "windows/WindowPlace.h"

#include <QWindow>
#include <algorithm>

namespace dubrix {

namespace {

/// What common window systems draw above a window, and at most on its other sides.
constexpr int titleBar = 40;
constexpr int border = 8;
constexpr int widestGap = 32;
constexpr QSize least(300, 360);

} // namespace

QSize fittingSize(const QSize& available, const QSize& wanted) {
    return wanted.boundedTo(available - QSize(2 * border, titleBar + border));
}

std::optional<QRect> placeBeside(const QRect& available, const QSize& wanted, Side side) {
    const QSize half((available.width() - border) / 2, available.height());
    const QSize size = fittingSize(half, wanted);
    if (size.width() < least.width() || size.height() < least.height())
        return std::nullopt;
    const int gap = std::min((available.width() - 2 * size.width()) / 3, widestGap);
    const int left = (available.width() - 2 * size.width() - gap) / 2;
    const int top = titleBar + (available.height() - titleBar - border - size.height()) / 2;
    const int beside = side == Side::Right ? size.width() + gap : 0;
    return QRect(available.topLeft() + QPoint(left + beside, top), size);
}

void bringToFront(QWindow& window) {
    if (window.windowStates() & Qt::WindowMinimized)
        window.showNormal();
    window.raise();
    window.requestActivate();
}

} // namespace dubrix
