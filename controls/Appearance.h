#pragma once

#include <QColor>
#include <QObject>
#include <QString>
#include <qqmlregistration.h>

namespace dubrix {

/// The family of both windows' font; empty where it is not installed. The first to ask has the
/// system's fonts listed, in whatever thread, which takes as long as reading the layout.
QString ownFontFamily();

/// Nothing when there is no such family.
void chooseFont(const QString& family);

/// A palette whose ground tells the layout which appearance is meant: "light" or "dark", or empty
/// for what the platform's theme says.
void chooseAppearance(const QString& appearance);

/// Whether windows that are made from now on leave movements out.
void chooseMotion(bool reduced);

/// Light or dark, moving or not, for the layout and for others that have to look like it.
class Appearance : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool still READ isStill CONSTANT)

public:
    static bool isStill();
    /// Whether windows are dark when this is the ground of the palette.
    Q_INVOKABLE static bool isDark(const QColor& ground) { return ground.lightnessF() < 0.5F; }
};

} // namespace dubrix
