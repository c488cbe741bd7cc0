#pragma once

#include <QColor>
#include <QObject>
#include <QString>
#include <qqmlregistration.h>

namespace dubrix {

/// Gives the program the font of both windows where it is installed.
void chooseFont();

/// A palette whose ground tells the layout which appearance is meant: "light" or "dark", or empty
/// for what the platform's theme says.
void chooseAppearance(const QString& appearance);

/// Light or dark, for the layout and for others that have to look like it.
class Appearance : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    /// Whether windows are dark when this is the ground of the palette.
    Q_INVOKABLE static bool isDark(const QColor& ground) { return ground.lightnessF() < 0.5F; }
};

} // namespace dubrix
