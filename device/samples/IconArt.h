#pragma once

#include <QImage>
#include <QPainter>

namespace dubrix {

/// Paints one icon into the square (0, 0)-(100, 100), edge to edge: the phone rounds the corners.
using IconArt = void (*)(QPainter& painter);

void paintFernleaf(QPainter& painter);
void paintSkyfathom(QPainter& painter);
void paintTockwell(QPainter& painter);
/// The application's own icon: two overlapping rounded squares, as in resources/dubrix.svg.
void paintDubrix(QPainter& painter);

/// The art as an opaque square of `pixels` by `pixels`.
QImage iconImage(IconArt art, int pixels);

} // namespace dubrix
