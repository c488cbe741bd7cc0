#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <optional>

class QWindow;

namespace dubrix {

enum class Side { Left, Right };

/// Where one of two windows of the size `window` stands, so that both lie side by side in the
/// middle of the part of a screen that windows may use; nothing when there is no room for both.
/// `frame` is kept free around each for what the window system draws.
std::optional<QPoint> placeBeside(const QRect& available, const QSize& window, Side side,
                                  int frame = 32);

/// Puts the window there on its screen; false, and nothing done, where there is no room for two.
bool standBeside(QWindow& window, Side side);

/// Shows the window in front of others and gives it the keyboard, as far as the window system lets
/// programs do that.
void bringToFront(QWindow& window);

} // namespace dubrix
