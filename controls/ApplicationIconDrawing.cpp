#include "controls/ApplicationIconDrawing.h"

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
                       static_cast<int>(picture.height),
                       qsizetype{4} * static_cast<int>(picture.width), QImage::Format_RGBA8888);
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
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xe6, 0xe7, 0xec));
    painter.drawPath(outline(pixels, 0));

    // The lines that an icon is drawn on, without the icon.
    painter.setClipPath(outline(pixels, 0));
    painter.scale(pixels / 60.0, pixels / 60.0);
    painter.setPen(QPen(QColor(0xb4, 0xb6, 0xc2), 0.8));
    painter.setBrush(Qt::NoBrush);
    for (const double radius : {8.0, 14.0, 24.0})
        painter.drawEllipse(QPointF(30, 30), radius, radius);
    for (const double place : {16.0, 30.0, 44.0}) {
        painter.drawLine(QPointF(place, 0), QPointF(place, 60));
        painter.drawLine(QPointF(0, place), QPointF(60, place));
    }
    painter.drawLine(QPointF(0, 0), QPointF(60, 60));
    painter.drawLine(QPointF(60, 0), QPointF(0, 60));
    painter.resetTransform();
    painter.setClipping(false);
    drawEdge(painter, pixels);
    return icon;
}

} // namespace dubrix
