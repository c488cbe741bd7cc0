#pragma once

#include "overlays/OverlayStage.h"

#include <optional>

namespace dubrix {

/// The inside of the status box, in the box's own coordinates.
struct HudLayout {
    Size box;
    Rect label; ///< empty without a text
    Point mark; ///< centre of the spinner and of the image
};

/// The box around a text of that size, or without a text. At least 100 points wide; a text too
/// narrow for that has the whole width to be centred in, any other a margin of 12 on either side.
HudLayout layoutAround(const std::optional<Size>& text);

/// What the keyboard takes of the screen when its movement is done, 0 when it goes or none moves.
/// The rectangle is the one at the start of the movement, and is not turned with the screen: in
/// landscape its width is the height that is seen.
double keyboardHeightAfter(const OverlayNotification& notification, Orientation orientation);

/// The middle of what a keyboard of that height leaves free of the screen, in the coordinates of
/// the screen's portrait axes. An orientation that is none of the four counts as portrait.
Point boxCenter(Size screen, Orientation orientation, double keyboard);

} // namespace dubrix
