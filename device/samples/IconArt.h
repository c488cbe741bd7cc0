#pragma once

#include <QImage>
#include <filesystem>

namespace dubrix {

/// The drawing in the SVG file `art` as an opaque square of `pixels` by `pixels`, edge to edge: the
/// phone rounds the corners. Null when the file is no drawing.
QImage iconImage(const std::filesystem::path& art, int pixels);

} // namespace dubrix
