#include "overlays/HudLayout.h"

#include <algorithm>
#include <utility>

namespace dubrix {

namespace {

constexpr double smallestBox = 100;
constexpr double heightAroundText = 80;
constexpr double labelMargin = 12;
constexpr double labelTop = 66;
constexpr double markAboveText = 36; ///< centre of the spinner and of the image

bool isLandscape(Orientation orientation) {
    return orientation == Orientation::LandscapeLeft || orientation == Orientation::LandscapeRight;
}

} // namespace

HudLayout layoutAround(const std::optional<Size>& text) {
    if (!text)
        return {.box = {smallestBox, smallestBox},
                .label = {},
                .mark = {smallestBox / 2, smallestBox / 2}};
    const double padded = text->width + 2 * labelMargin;
    const double width = std::max(padded, smallestBox);
    Rect label{{labelMargin, labelTop}, *text};
    if (padded < smallestBox) {
        label.origin.x = 0;
        label.size.width = smallestBox;
    }
    return {.box = {width, text->height + heightAroundText},
            .label = label,
            .mark = {width / 2, markAboveText}};
}

double keyboardHeightAfter(const OverlayNotification& notification, Orientation orientation) {
    using enum OverlayNotification::Name;
    if (notification.name != UIKeyboardWillShowNotification &&
        notification.name != UIKeyboardDidShowNotification)
        return 0;
    const Size keyboard = notification.keyboardFrameBegin.size;
    return isLandscape(orientation) ? keyboard.width : keyboard.height;
}

Point boxCenter(Size screen, Orientation orientation, double keyboard) {
    if (isLandscape(orientation))
        std::swap(screen.width, screen.height);
    const double middle = screen.width / 2;
    const double free = screen.height - keyboard;
    switch (orientation) {
    case Orientation::UpsideDown:
        return {middle, screen.height - free / 2};
    case Orientation::LandscapeLeft:
        return {screen.height - free / 2, middle};
    case Orientation::LandscapeRight:
        return {free / 2, middle};
    case Orientation::Portrait:
    case Orientation::Unknown:
        break;
    }
    return {middle, free / 2};
}

} // namespace dubrix
