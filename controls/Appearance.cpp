#include "controls/Appearance.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QPalette>

namespace dubrix {

namespace {

bool motionIsReduced = false;

} // namespace

QString ownFontFamily() {
    const QString family = QStringLiteral("Inter");
    return QFontDatabase::families().contains(family) ? family : QString();
}

void chooseFont(const QString& family) {
    if (family.isEmpty())
        return;
    QFont font = QGuiApplication::font();
    font.setFamily(family);
    QGuiApplication::setFont(font);
}

void chooseAppearance(const QString& appearance) {
    if (appearance.isEmpty())
        return;
    const bool dark = appearance == QStringLiteral("dark");
    const QPalette palette(dark ? QColor(28, 28, 30) : QColor(242, 242, 247));
    QGuiApplication::setPalette(palette);
}

void chooseMotion(bool reduced) {
    motionIsReduced = reduced;
}

bool Appearance::isStill() {
    return motionIsReduced;
}

} // namespace dubrix
