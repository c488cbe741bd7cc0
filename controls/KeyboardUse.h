#pragma once

#include <QObject>
#include <qqmlregistration.h>

namespace dubrix {

/// Whether the user is finding their way by keyboard: from a key that leads somewhere until the
/// next press of a pointer. The layout marks the focused control only meanwhile.
class KeyboardUse : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool active READ active NOTIFY activeChanged)

public:
    KeyboardUse();

    bool active() const { return active_; }
    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    void activeChanged();

private:
    void setActive(bool active);

    bool active_ = false;
};

} // namespace dubrix
