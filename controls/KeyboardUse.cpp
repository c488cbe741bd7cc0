#include "controls/KeyboardUse.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <utility>

namespace dubrix {

namespace {

bool leads(int key) {
    switch (key) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape:
        return true;
    default:
        return false;
    }
}

} // namespace

KeyboardUse::KeyboardUse() {
    QCoreApplication::instance()->installEventFilter(this);
}

bool KeyboardUse::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::TouchBegin)
        setActive(false);
    else if (event->type() == QEvent::KeyPress && leads(static_cast<QKeyEvent*>(event)->key()))
        setActive(true);
    return QObject::eventFilter(watched, event);
}

void KeyboardUse::setActive(bool active) {
    if (active != std::exchange(active_, active))
        Q_EMIT activeChanged();
}

} // namespace dubrix
