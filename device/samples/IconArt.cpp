#include "device/samples/IconArt.h"

#include <QLinearGradient>
#include <QPainterPath>
#include <QPen>
#include <QRadialGradient>
#include <cmath>
#include <numbers>

namespace dubrix {

namespace {

constexpr QRectF wholeSquare(0, 0, 100, 100);

QLinearGradient gradient(QPointF from, QPointF to, QColor first, QColor last) {
    QLinearGradient result(from, to);
    result.setColorAt(0, first);
    result.setColorAt(1, last);
    return result;
}

QPen roundPen(const QBrush& brush, double width) {
    return QPen(brush, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

/// A soft shadow below a shape: the shape again and again, a little larger and nearly clear.
void paintShadow(QPainter& painter, const QPainterPath& shape, QPointF offset, double blur) {
    constexpr int layers = 10;
    painter.save();
    painter.translate(offset);
    for (int layer = 1; layer <= layers; ++layer) {
        painter.strokePath(shape, roundPen(QColor(0, 0, 0, 9), 2 * blur * layer / layers));
    }
    painter.fillPath(shape, QColor(0, 0, 0, 40));
    painter.restore();
}

/// One leaflet of the fern: a pointed oval from `root`, `length` long, turned by `degrees`.
void paintLeaflet(QPainter& painter, QPointF root, double length, double degrees) {
    QPainterPath leaflet;
    leaflet.quadTo(length * 0.45, -length * 0.27, length, 0);
    leaflet.quadTo(length * 0.45, length * 0.27, 0, 0);
    painter.save();
    painter.translate(root);
    painter.rotate(degrees);
    painter.fillPath(
        leaflet, gradient({0, 0}, {length, 0}, QColor(0x1f, 0x7a, 0x4d), QColor(0x5c, 0xc4, 0x7c)));
    painter.restore();
}

void paintFern(QPainter& painter) {
    QPainterPath stem(QPointF(41, 80));
    stem.cubicTo(44, 60, 48, 44, 61, 24);
    constexpr int pairs = 6;
    for (int pair = 0; pair < pairs; ++pair) {
        const double along = 0.16 + 0.13 * pair;
        const double length = 25 - 2.9 * pair;
        const double direction = -stem.angleAtPercent(along);
        paintLeaflet(painter, stem.pointAtPercent(along), length, direction - 52);
        paintLeaflet(painter, stem.pointAtPercent(along), length, direction + 52);
    }
    paintLeaflet(painter, stem.pointAtPercent(0.9), 13, -stem.angleAtPercent(0.95));
    painter.strokePath(stem, roundPen(QColor(0x17, 0x66, 0x40), 2.2));
}

QPainterPath wave(double level, double height, double phase) {
    QPainterPath path(QPointF(-2, 102));
    for (int x = -2; x <= 102; ++x) {
        path.lineTo(x, level + height * std::sin(x / 100.0 * 2.6 * std::numbers::pi + phase));
    }
    path.lineTo(102, 102);
    path.closeSubpath();
    return path;
}

QPainterPath cloud() {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    path.addRoundedRect(QRectF(20, 43, 62, 22), 11, 11);
    path.addEllipse(QPointF(42, 43), 15, 15);
    path.addEllipse(QPointF(61, 45), 12, 12);
    return path.simplified();
}

void paintHand(QPainter& painter, double degrees, double length, double tail, double width,
               const QColor& color) {
    painter.save();
    painter.translate(50, 50);
    painter.rotate(degrees);
    painter.setPen(roundPen(color, width));
    painter.drawLine(QPointF(0, tail), QPointF(0, -length));
    painter.restore();
}

void paintHourMarks(QPainter& painter) {
    for (int hour = 0; hour < 12; ++hour) {
        const bool quarter = hour % 3 == 0;
        painter.save();
        painter.translate(50, 50);
        painter.rotate(30.0 * hour);
        painter.setPen(roundPen(QColor(0x3a, 0x2a, 0x4f), quarter ? 3.4 : 1.8));
        painter.drawLine(QPointF(0, -30.5), QPointF(0, quarter ? -25.5 : -28.5));
        painter.restore();
    }
}

} // namespace

void paintFernleaf(QPainter& painter) {
    painter.fillRect(wholeSquare, gradient({0, 0}, {100, 100}, QColor(0x57, 0xb8, 0x8a),
                                           QColor(0x0e, 0x4f, 0x43)));
    painter.translate(50, 50);
    painter.rotate(-7);
    painter.translate(-50, -50);
    QPainterPath page;
    page.addRoundedRect(QRectF(21, 14, 58, 73), 6, 6);
    paintShadow(painter, page, {0, 2.5}, 5);
    painter.fillPath(
        page, gradient({21, 14}, {79, 87}, QColor(0xff, 0xfd, 0xf4), QColor(0xf0, 0xe7, 0xcf)));
    painter.setPen(QPen(QColor(0xd9, 0xcd, 0xae), 1.1));
    for (int line = 0; line < 6; ++line) {
        const double y = 27 + 10.5 * line;
        painter.drawLine(QPointF(28, y), QPointF(72, y));
    }
    paintFern(painter);
}

void paintSkyfathom(QPainter& painter) {
    painter.fillRect(wholeSquare, gradient({50, 0}, {50, 80}, QColor(0x1f, 0x6f, 0xe5),
                                           QColor(0x9b, 0xdc, 0xff)));
    QRadialGradient glow(QPointF(66, 31), 34);
    glow.setColorAt(0.45, QColor(255, 236, 160, 170));
    glow.setColorAt(1, QColor(255, 236, 160, 0));
    painter.fillRect(wholeSquare, glow);
    QPainterPath sun;
    sun.addEllipse(QPointF(66, 31), 16.5, 16.5);
    painter.fillPath(
        sun, gradient({66, 14}, {66, 48}, QColor(0xff, 0xe5, 0x6b), QColor(0xff, 0xa9, 0x2e)));
    paintShadow(painter, cloud(), {0, 1.5}, 3);
    painter.fillPath(cloud(), gradient({50, 28}, {50, 65}, Qt::white, QColor(0xdf, 0xee, 0xfc)));
    painter.fillPath(wave(73, 3.2, 0.4), QColor(0x3d, 0xa5, 0xe8));
    painter.fillPath(wave(82, 3.2, 2.3), QColor(0x1c, 0x6f, 0xc4));
    painter.fillPath(wave(91, 3.0, 4.4), QColor(0x12, 0x3f, 0x8c));
}

void paintTockwell(QPainter& painter) {
    painter.fillRect(wholeSquare, gradient({0, 0}, {100, 100}, QColor(0xff, 0x8a, 0x5c),
                                           QColor(0xb3, 0x2d, 0x6d)));
    QPainterPath dial;
    dial.addEllipse(QPointF(50, 50), 36, 36);
    paintShadow(painter, dial, {0, 2.5}, 5);
    painter.fillPath(
        dial, gradient({50, 14}, {50, 86}, QColor(0xff, 0xff, 0xff), QColor(0xf3, 0xe4, 0xdc)));
    painter.strokePath(dial, QPen(QColor(0x3a, 0x2a, 0x4f), 3.2));
    paintHourMarks(painter);
    paintHand(painter, 304.5, 16, 3, 4.6, QColor(0x3a, 0x2a, 0x4f));
    paintHand(painter, 54, 24, 4, 3.4, QColor(0x3a, 0x2a, 0x4f));
    paintHand(painter, 195, 26, 7, 1.6, QColor(0xe8, 0x4a, 0x3c));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xe8, 0x4a, 0x3c));
    painter.drawEllipse(QPointF(50, 50), 3.4, 3.4);
}

void paintDubrix(QPainter& painter) {
    painter.fillRect(wholeSquare, gradient({0, 0}, {100, 100}, QColor(0x3f, 0x8c, 0xff),
                                           QColor(0x6a, 0x2b, 0xd9)));
    QPainterPath back;
    back.addRoundedRect(QRectF(18, 18, 46, 46), 12, 12);
    painter.fillPath(back, QColor(255, 255, 255, 115));
    QPainterPath front;
    front.addRoundedRect(QRectF(36, 36, 46, 46), 12, 12);
    paintShadow(painter, front, {0, 1.5}, 4);
    painter.fillPath(front, gradient({36, 36}, {82, 82}, Qt::white, QColor(0xe2, 0xe6, 0xff)));
    // The part shared by both shows the colour of what lies below.
    painter.fillPath(front.intersected(back), gradient({36, 36}, {64, 64}, QColor(0x7d, 0xa8, 0xff),
                                                       QColor(0x8b, 0x78, 0xf2)));
}

QImage iconImage(IconArt art, int pixels) {
    QImage image(pixels, pixels, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixels / 100.0, pixels / 100.0);
    art(painter);
    painter.end();
    return image;
}

} // namespace dubrix
