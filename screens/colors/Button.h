#pragma once

#include <QColor>
#include <QObject>
#include <QRectF>
#include <QString>
#include <qqmlregistration.h>

namespace dubrix {

/// The state of a button that a screen's code makes. Lengths in points. All but the background is
/// set before the button is drawn.
class Button : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(QRectF frame MEMBER frame CONSTANT)
    Q_PROPERTY(QString title MEMBER title CONSTANT)
    Q_PROPERTY(double fontSize MEMBER fontSize CONSTANT)
    Q_PROPERTY(QColor titleColor MEMBER titleColor CONSTANT)
    Q_PROPERTY(int contentHorizontalAlignment MEMBER contentHorizontalAlignment CONSTANT)
    Q_PROPERTY(QColor backgroundColor READ backgroundColor WRITE setBackgroundColor NOTIFY
                   backgroundColorChanged)
    Q_PROPERTY(double cornerRadius MEMBER cornerRadius CONSTANT)
    Q_PROPERTY(double borderWidth MEMBER borderWidth CONSTANT)
    Q_PROPERTY(QColor borderColor MEMBER borderColor CONSTANT)

public:
    using QObject::QObject;

    QColor backgroundColor() const { return backgroundColor_; }
    void setBackgroundColor(const QColor& color) {
        if (color != std::exchange(backgroundColor_, color))
            Q_EMIT backgroundColorChanged();
    }

    QRectF frame;
    QString title;
    double fontSize = 0;
    QColor titleColor;
    int contentHorizontalAlignment = Qt::AlignLeft;
    double cornerRadius = 0;
    double borderWidth = 0;
    QColor borderColor;

Q_SIGNALS:
    void backgroundColorChanged();

private:
    QColor backgroundColor_;
};

} // namespace dubrix
