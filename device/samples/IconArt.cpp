#include "device/samples/IconArt.h"

#include <QPainter>
#include <QSvgRenderer>

namespace dubrix {

QImage iconImage(const std::filesystem::path& art, int pixels) {
    QSvgRenderer drawing(QString::fromStdString(art.string()));
    if (!drawing.isValid())
        return {};
    QImage image(pixels, pixels, QImage::Format_RGB32);
    image.fill(Qt::black); // what lies below the edges of a drawing shows through them
    QPainter painter(&image);
    drawing.render(&painter);
    return image;
}

} // namespace dubrix
