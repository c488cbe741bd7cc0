#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <optional>

class QQuickItem;
class QQuickWindow;

namespace dubrix {

/// The window as a person meets it: what it shows, what things are called, where a finger can go.
/// Input is handed to the window system's queue, like a real hand's: while the application leaves
/// user input alone it is kept for later.
class Screen {
public:
    explicit Screen(QQuickWindow& window);
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    struct Alert {
        QString title;
        QString message;
        bool operator==(const Alert&) const = default;
    };

    /// Every visible text, topmost first.
    QList<QString> texts() const;
    /// Whether `text` is a whole visible text or one whole line of one.
    bool shows(const QString& text) const;
    /// The accessible names of everything that can be used now, topmost first.
    QList<QString> names() const;
    /// Alerts and status boxes that are shown now.
    QList<Alert> alerts() const;

    /// Presses and lets go in the middle of what has this accessible name, the topmost that can be
    /// used now, scrolled into view. False when there is none, or as long as it moves or something
    /// over it is on its way out: call again a moment later.
    bool tap(const QString& name);
    /// Presses it long enough for a menu, over several calls; true when it has let go.
    bool hold(const QString& name);
    /// Carries a file of this machine or the desktop to the window's middle and lets go of it
    /// there. False when the window does not take it.
    bool drop(const QString& file);
    /// Taps the field, then replaces its text. False where tap is.
    bool type(const QString& name, const QString& text);
    /// Whether a picture that is part of what is shown is still being read.
    bool isLoading() const;
    /// The window's picture as PNG bytes.
    QByteArray picture() const;

private:
    /// Every item of the window that is shown, in painting order.
    QList<QQuickItem*> shownItems() const;
    QHash<const QObject*, QString> accessibleNames() const;
    QQuickItem* find(const QString& name) const;
    bool isSettling() const;
    /// Where to press what has this name; nothing where `tap` is false.
    std::optional<QPointF> aimAt(const QString& name);
    void sendMouse(const QPointF& point, bool down);
    void press(int key, Qt::KeyboardModifiers modifiers, const QString& text);

    QQuickWindow& window_;
    /// Frames drawn so far.
    unsigned frames_ = 0;
    QMetaObject::Connection drawing_;
    /// What the last tap aimed at, where that was, and the frame since which it has been there.
    const QQuickItem* aim_ = nullptr;
    QRectF aimedAt_;
    unsigned aimedFrame_ = 0;
    /// Where the pointer is held down, and since when.
    std::optional<QPointF> held_;
    QElapsedTimer holding_;
};

} // namespace dubrix
