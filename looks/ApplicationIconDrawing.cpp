#include "looks/ApplicationIconDrawing.h"

#include <QPainter>
#include <QPainterPath>

namespace dubrix {

namespace {

/// The corners' radius as a part of the edge.
constexpr double cornerRadius = 0.2237;

QImage emptySquare(int pixels) {
    QImage square(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    square.fill(Qt::transparent);
    return square;
}

QPainterPath outline(int pixels, double inset) {
    QPainterPath path;
    const double radius = cornerRadius * pixels - inset;
    path.addRoundedRect(QRectF(0, 0, pixels, pixels).adjusted(inset, inset, -inset, -inset), radius,
                        radius);
    return path;
}

/// The edge that keeps an icon apart from a ground of its own colour.
void drawEdge(QPainter& painter, int pixels) {
    painter.setPen(QPen(QColor(0, 0, 0, 38), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(outline(pixels, 0.5));
}

/// The middle of the image that fills a square, at the square's size.
QImage fitted(const QImage& image, int pixels) {
    const int edge = std::min(image.width(), image.height());
    const QRect middle((image.width() - edge) / 2, (image.height() - edge) / 2, edge, edge);
    return image.copy(middle)
        .convertToFormat(QImage::Format_ARGB32_Premultiplied)
        .scaled(pixels, pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

QImage drawnIcon(const RgbaImage& picture, int pixels) {
    const QImage image(picture.bytes.get(), static_cast<int>(picture.width),
                       static_cast<int>(picture.height), static_cast<int>(picture.width) * 4,
                       QImage::Format_RGBA8888);
    QImage icon = emptySquare(pixels);
    QPainter painter(&icon);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QBrush(fitted(image, pixels)));
    painter.drawPath(outline(pixels, 0));
    drawEdge(painter, pixels);
    return icon;
}

QImage drawnPlaceholder(int pixels) {
    QImage icon = emptySquare(pixels);
    QPainter painter(&icon);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient ground(0, 0, 0, pixels);
    ground.setColorAt(0, QColor(0xc9, 0xcb, 0xd6));
    ground.setColorAt(1, QColor(0x9a, 0x9d, 0xad));
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawPath(outline(pixels, 0));

    // Two overlapping sheets: an application, whichever it is.
    painter.scale(pixels / 29.0, pixels / 29.0);
    painter.setPen(QPen(QColor(255, 255, 255, 150), 1.6));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(7, 7, 11, 11), 2.6, 2.6);
    painter.setPen(QPen(Qt::white, 1.6));
    painter.setBrush(QColor(0xa9, 0xac, 0xba));
    painter.drawRoundedRect(QRectF(11, 11, 11, 11), 2.6, 2.6);
    painter.resetTransform();
    drawEdge(painter, pixels);
    return icon;
}

} // namespace dubrix
