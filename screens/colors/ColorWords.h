#pragma once

#include <QColor>
#include <QObject>
#include <QString>
#include <qqmlregistration.h>

namespace dubrix {

/// Says a colour to who cannot see it.
class ColorWords : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    /// The components from 0 to 255, such as "Red 255, green 102, blue 0".
    Q_INVOKABLE static QString componentsOf(const QColor& color);
    /// What people call it, such as "dark violet"; many colours share a name.
    Q_INVOKABLE static QString nameOf(const QColor& color);
};

} // namespace dubrix
