#pragma once

#include <QRect>
#include <QSize>
#include <optional>

class QWindow;

namespace dubrix {

enum class Side { Left, Right };

/// The size at which a window fits into the part of a screen that windows may use, with the title
/// bar and borders that the window system draws around it; `wanted` where there is room for that.
QSize fittingSize(const QSize& available, const QSize& wanted);

/// Where one of two windows of the size `wanted` stands, so that both lie side by side in the
/// middle of the part of a screen that windows may use; smaller where there is no room for that,
/// and nothing where not even two of 300 by 360 have any. What the window system draws is not
/// counted.
std::optional<QRect> placeBeside(const QRect& available, const QSize& wanted, Side side);

/// Shows the window in front of others and gives it the keyboard, as far as the window system lets
/// programs do that.
void bringToFront(QWindow& window);

} // namespace dubrix
