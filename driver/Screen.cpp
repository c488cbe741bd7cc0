#include "driver/Screen.h"

#include <QAccessible>
#include <QBuffer>
#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>
#include <algorithm>
#include <qpa/qwindowsysteminterface.h>
#include <utility>

namespace dubrix {

namespace {

bool isBeingDismissed(const QQuickItem* item) {
    const QVariant dismissing = item->property("dismissing");
    return dismissing.isValid() && dismissing.toBool();
}

/// The part of the item that the window and every clipping ancestor leave to be seen, in the
/// window's coordinates.
QRectF seenPart(const QQuickItem* item) {
    QRectF seen = item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
    for (const QQuickItem* around = item->parentItem(); around; around = around->parentItem())
        if (around->clip() || !around->parentItem())
            seen &= around->mapRectToScene(QRectF(0, 0, around->width(), around->height()));
    return seen;
}

void collectShown(QQuickItem* item, QList<QQuickItem*>& items) {
    if (!item->isVisible() || item->opacity() < 0.01 || isBeingDismissed(item))
        return;
    items.append(item);
    QList<QQuickItem*> children = item->childItems();
    std::ranges::stable_sort(children, {}, &QQuickItem::z);
    for (QQuickItem* child : children)
        collectShown(child, items);
}

void collectNames(QAccessibleInterface* element, QHash<const QObject*, QString>& names) {
    if (!element)
        return;
    if (element->object())
        names.insert(element->object(), element->text(QAccessible::Name));
    for (int index = 0; index < element->childCount(); ++index)
        collectNames(element->child(index), names);
}

bool isText(const QQuickItem* item) {
    return item->inherits("QQuickText") || item->inherits("QQuickTextInput") ||
           item->inherits("QQuickTextEdit");
}

/// Scrolls every flickable around the item until it can be seen whole.
void scrollIntoView(QQuickItem* item) {
    for (QQuickItem* around = item->parentItem(); around; around = around->parentItem()) {
        if (!around->inherits("QQuickFlickable"))
            continue;
        const QRectF rect = item->mapRectToItem(around, {0, 0, item->width(), item->height()});
        const double offset = rect.top() < 0                     ? rect.top()
                              : rect.bottom() > around->height() ? rect.bottom() - around->height()
                                                                 : 0;
        if (offset != 0)
            around->setProperty("contentY", around->property("contentY").toDouble() + offset);
    }
}

} // namespace

QList<QQuickItem*> Screen::shownItems() const {
    QList<QQuickItem*> items;
    collectShown(window_.contentItem(), items);
    return items;
}

QHash<const QObject*, QString> Screen::accessibleNames() const {
    QHash<const QObject*, QString> names;
    collectNames(QAccessible::queryAccessibleInterface(&window_), names);
    return names;
}

QList<QString> Screen::texts() const {
    QList<QString> texts;
    for (const QQuickItem* item : shownItems()) {
        const QString text = isText(item) ? item->property("text").toString() : QString();
        if (!text.isEmpty() && !seenPart(item).isEmpty())
            texts.prepend(text);
    }
    return texts;
}

bool Screen::shows(const QString& text) const {
    return std::ranges::any_of(texts(), [&text](const QString& shown) {
        return shown == text || shown.split(QLatin1Char('\n')).contains(text);
    });
}

QList<QString> Screen::names() const {
    const QHash<const QObject*, QString> names = accessibleNames();
    QList<QString> usable;
    for (const QQuickItem* item : shownItems())
        if (const QString name = names.value(item); item->isEnabled() && !name.isEmpty())
            usable.prepend(name);
    return usable;
}

QList<Screen::Alert> Screen::alerts() const {
    QList<Alert> alerts;
    for (QQuickItem* item : shownItems()) {
        QAccessibleInterface* element = QAccessible::queryAccessibleInterface(item);
        if (element && element->role() == QAccessible::AlertMessage)
            alerts.append(
                {element->text(QAccessible::Name), element->text(QAccessible::Description)});
    }
    return alerts;
}

QQuickItem* Screen::find(const QString& name) const {
    const QHash<const QObject*, QString> names = accessibleNames();
    const QList<QQuickItem*> items = shownItems();
    for (auto item = items.crbegin(); item != items.crend(); ++item)
        if ((*item)->isEnabled() && names.contains(*item) && names.value(*item) == name)
            return *item;
    return nullptr;
}

void Screen::tapAt(const QPointF& point) {
    const QPointF global = window_.mapToGlobal(point);
    QWindowSystemInterface::handleMouseEvent(&window_, point, global, Qt::LeftButton,
                                             Qt::LeftButton, QEvent::MouseButtonPress);
    QWindowSystemInterface::handleMouseEvent(&window_, point, global, Qt::NoButton, Qt::LeftButton,
                                             QEvent::MouseButtonRelease);
}

void Screen::press(int key, Qt::KeyboardModifiers modifiers, const QString& text) {
    QWindowSystemInterface::handleKeyEvent(&window_, QEvent::KeyPress, key, modifiers, text);
    QWindowSystemInterface::handleKeyEvent(&window_, QEvent::KeyRelease, key, modifiers, text);
}

bool Screen::isSettling() const {
    const QList<QQuickItem*> layers = window_.contentItem()->childItems();
    return std::ranges::any_of(layers, isBeingDismissed);
}

bool Screen::tap(const QString& name) {
    QQuickItem* item = find(name);
    if (!item || isSettling())
        return false;
    scrollIntoView(item);
    const QRectF seen = seenPart(item);
    const bool sameAim = item == std::exchange(aim_, item);
    const bool resting = sameAim && seen == aimedAt_;
    aimedAt_ = seen;
    if (seen.isEmpty() || !resting)
        return false;
    aim_ = nullptr;
    tapAt(seen.center());
    return true;
}

bool Screen::type(const QString& name, const QString& text) {
    if (!tap(name))
        return false;
    press(Qt::Key_A, Qt::ControlModifier, QString());
    press(Qt::Key_Delete, Qt::NoModifier, QString());
    for (const QChar character : text)
        press(character == QLatin1Char('\n') ? Qt::Key_Return : 0, Qt::NoModifier,
              QString(character));
    return true;
}

QByteArray Screen::picture() const {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    window_.grabWindow().save(&buffer, "PNG");
    return bytes;
}

} // namespace dubrix
