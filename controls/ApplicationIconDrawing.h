#pragma once

#include "formats/images/RgbaImage.h"

#include <QImage>

namespace dubrix {

/// A picture as the phone shows icons: filling a square of `pixels` by `pixels`, the corners cut
/// round, a faint edge. Any thread.
QImage drawnIcon(const RgbaImage& picture, int pixels);

/// What stands for an application without an icon, in the same form. Any thread.
QImage drawnPlaceholder(int pixels);

} // namespace dubrix
