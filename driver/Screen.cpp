#include "driver/Screen.h"

#include <QAccessible>
#include <QBuffer>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QQuickItem>
#include <QQuickWindow>
#include <QStyleHints>
#include <QUrl>
#include <algorithm>
#include <private/qhighdpiscaling_p.h>
#include <qpa/qplatformdrag.h>
#include <qpa/qwindowsysteminterface.h>
#include <utility>

namespace dubrix {

namespace {

/// What stands still for so many frames has come to rest. Time does not tell: a busy machine may
/// draw none for long.
constexpr unsigned restingFrames = 2;

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

Screen::Screen(QQuickWindow& window)
    : window_(window),
      drawing_(QObject::connect(&window, &QQuickWindow::afterAnimating, [this] { ++frames_; })) {}

Screen::~Screen() {
    QObject::disconnect(drawing_);
}

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

void Screen::sendMouse(const QPointF& point, bool down) {
    QWindowSystemInterface::handleMouseEvent(
        &window_, QHighDpi::toNativeLocalPosition(point, &window_),
        QHighDpi::toNativeGlobalPosition(window_.mapToGlobal(point), &window_),
        down ? Qt::LeftButton : Qt::NoButton, Qt::LeftButton,
        down ? QEvent::MouseButtonPress : QEvent::MouseButtonRelease);
}

void Screen::press(int key, Qt::KeyboardModifiers modifiers, const QString& text) {
    QWindowSystemInterface::handleKeyEvent(&window_, QEvent::KeyPress, key, modifiers, text);
    QWindowSystemInterface::handleKeyEvent(&window_, QEvent::KeyRelease, key, modifiers, text);
}

bool Screen::isSettling() const {
    const QList<QQuickItem*> layers = window_.contentItem()->childItems();
    return std::ranges::any_of(layers, isBeingDismissed);
}

std::optional<QPointF> Screen::aimAt(const QString& name) {
    QQuickItem* item = find(name);
    if (!item || isSettling())
        return std::nullopt;
    scrollIntoView(item);
    const QRectF seen = seenPart(item);
    const bool sameItem = item == std::exchange(aim_, item);
    const bool samePlace = seen == std::exchange(aimedAt_, seen);
    if (!sameItem || !samePlace)
        aimedFrame_ = frames_;
    if (seen.isEmpty() || frames_ - aimedFrame_ < restingFrames) {
        window_.update();
        return std::nullopt;
    }
    aim_ = nullptr;
    return seen.center();
}

bool Screen::tap(const QString& name) {
    const auto point = aimAt(name);
    if (!point)
        return false;
    sendMouse(*point, true);
    sendMouse(*point, false);
    return true;
}

bool Screen::hold(const QString& name) {
    if (!held_) {
        held_ = aimAt(name);
        if (held_) {
            sendMouse(*held_, true);
            holding_.start();
        }
        return false;
    }
    if (holding_.elapsed() < 3 * QGuiApplication::styleHints()->mousePressAndHoldInterval() / 2)
        return false;
    sendMouse(*std::exchange(held_, std::nullopt), false);
    return true;
}

bool Screen::drop(const QString& file) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(file)});
    const QPoint middle = QHighDpi::toNativeLocalPosition(
        QPoint(window_.width() / 2, window_.height() / 2), &window_);
    const auto drag = QWindowSystemInterface::handleDrag(&window_, &data, middle, Qt::CopyAction,
                                                         Qt::LeftButton, Qt::NoModifier);
    if (!drag.isAccepted()) {
        QWindowSystemInterface::handleDrag(&window_, nullptr, {}, Qt::IgnoreAction, Qt::NoButton,
                                           Qt::NoModifier);
        return false;
    }
    return QWindowSystemInterface::handleDrop(&window_, &data, middle, Qt::CopyAction, Qt::NoButton,
                                              Qt::NoModifier)
        .isAccepted();
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

bool Screen::isLoading() const {
    constexpr int loading = 2;
    return std::ranges::any_of(shownItems(), [](const QQuickItem* item) {
        return item->inherits("QQuickImageBase") && item->property("status").toInt() == loading;
    });
}

QByteArray Screen::picture() const {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    window_.grabWindow().save(&buffer, "PNG");
    return bytes;
}

} // namespace dubrix
