#pragma once

#include <QQuickImageProvider>

namespace dubrix {

/// The home screen's ground, drawn here: slopes one behind the other below a sky, for "light" or
/// "dark". Light stays bright and dark stays dark all over, so that names can be read anywhere.
class Wallpaper : public QQuickImageProvider {
public:
    static constexpr auto name = "wallpaper";

    Wallpaper();
    /// A square; its sides may be cut off.
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace dubrix
