#include "screens/alerts/AlertController.h"

namespace dubrix {

AlertController::AlertController(const QString& title, const QString& message) : message_(message) {
    setTitle(title);
}

void AlertController::addAction(const QString& title, Handler handler) {
    actions_.push_back({title, std::move(handler)});
}

QStringList AlertController::buttons() const {
    QStringList titles;
    for (const Action& action : actions_)
        titles.append(action.title);
    return titles;
}

void AlertController::press(int button) {
    if (button < 0 || button >= static_cast<int>(actions_.size()) || std::exchange(pressed_, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this, handler = actions_[static_cast<std::size_t>(button)].handler] {
            dismissViewController(true);
            // A copy of its own: the handler may outlive this alert.
            const Handler running = handler;
            running();
        },
        Qt::QueuedConnection);
}

} // namespace dubrix
