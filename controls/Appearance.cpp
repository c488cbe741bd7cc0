#include "controls/Appearance.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QPalette>

namespace dubrix {

void chooseFont() {
    const QString family = QStringLiteral("Inter");
    if (!QFontDatabase::families().contains(family))
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

} // namespace dubrix
