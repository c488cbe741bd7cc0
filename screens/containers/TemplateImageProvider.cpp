#include "screens/containers/TemplateImageProvider.h"

#include <QFile>
#include <QPainter>

namespace dubrix {

namespace {

QImage finestVariant(const QString& name) {
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    for (const QString& scale : {QStringLiteral("@3x"), QStringLiteral("@2x"), QString()}) {
        const QString file =
            QStringLiteral(":/resources/") + name.left(dot) + scale + name.mid(dot);
        if (QFile::exists(file))
            return QImage(file);
    }
    return {};
}

} // namespace

QImage TemplateImageProvider::requestImage(const QString& id, QSize* size,
                                           const QSize& requestedSize) {
    QImage image = finestVariant(id.section(QLatin1Char('/'), 0, -2));
    if (image.isNull())
        return image;
    if (requestedSize.isValid())
        image = image.scaled(requestedSize, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    image = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(1);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), QColor(QLatin1Char('#') + id.section(QLatin1Char('/'), -1)));
    painter.end();
    if (size)
        *size = image.size();
    return image;
}

} // namespace dubrix
