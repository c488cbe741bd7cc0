#pragma once

#include "formats/images/RgbaImage.h"

#include <QCache>
#include <QImage>
#include <QMutex>
#include <QQuickAsyncImageProvider>
#include <QThreadPool>
#include <functional>
#include <optional>
#include <string>

namespace dubrix {

/// Applications' icons for the layout, read and drawn off the main thread. Those drawn last are
/// kept. An application without a usable icon gets a drawing of our own.
class ApplicationIconProvider : public QQuickAsyncImageProvider {
public:
    /// The name under which the layout asks for the provider's images.
    static constexpr auto name = "application-icon";
    /// What the layout asks for to show the icon of the application with this bundle folder.
    static QString addressFor(const std::string& bundlePath);

    /// Reads the icon of the application with this bundle folder for a square of so many pixels;
    /// called on several threads at once.
    using Read =
        std::function<std::optional<RgbaImage>(const std::string& bundlePath, unsigned pixels)>;
    explicit ApplicationIconProvider(Read read);

    /// A square of `requestedSize`'s width in pixels.
    QQuickImageResponse* requestImageResponse(const QString& id,
                                              const QSize& requestedSize) override;

    /// The icon as a square of `pixels` by `pixels` with the corners cut round; read and drawn
    /// unless it is kept from before. Any thread.
    QImage icon(const std::string& bundlePath, int pixels);

    /// How many kilobytes of icons are kept: those of some hundred rows on the finest screen.
    static constexpr int keptKilobytes = 8 << 10;

private:
    const Read read_;
    QMutex keptMutex_;
    QCache<QString, QImage> kept_{keptKilobytes};
    /// Last, so that its threads end before what they use.
    QThreadPool readers_;
};

} // namespace dubrix
