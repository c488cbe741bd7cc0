#include "device/samples/IconArt.h"

#include <QPainter>
#include <QSvgRenderer>

namespace dubrix {

QImage iconImage(const std::filesystem::path& art, int pixels) {
    QSvgRenderer drawing(QString::fromStdString(art.string()));
    if (!drawing.isValid())
        return {};
    QImage image(pixels, pixels, QImage::Format_RGB32);
    QPainter painter(&image);
    drawing.render(&painter);
    return image;
}

} // namespace dubrix
