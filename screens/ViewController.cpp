#include "screens/ViewController.h"

#include "screens/containers/ModalStack.h"
#include "screens/containers/NavigationController.h"

#include <QtQml/qqmlextensionplugin.h>

// Whoever links the layout links what it is made of.
Q_IMPORT_QML_PLUGIN(DubrixControlsPlugin)

namespace dubrix {

void ViewController::setTitle(const QString& title) {
    if (title != std::exchange(title_, title))
        Q_EMIT titleChanged();
}

void ViewController::loadViewIfNeeded() {
    if (!std::exchange(viewLoaded_, true))
        viewDidLoad();
}

void ViewController::presentViewController(std::unique_ptr<ViewController> modal, bool animated) {
    if (modalStack_)
        modalStack_->present(std::move(modal), *this, animated);
}

void ViewController::dismissViewController(bool animated) {
    if (!modalStack_)
        return;
    ViewController* presented = modalStack_->topmostPresentedBy(*this);
    if (presented == nullptr && navigationController_)
        return navigationController_->dismissViewController(animated);
    modalStack_->dismiss(presented ? *presented : *this, animated);
}

void ViewController::dismissBySystem() {
    if (modalStack_)
        modalStack_->dismiss(*this, true);
}

void ViewController::setLeftBarButtonItem(SystemItem, std::function<void()> action) {
    leftBarButton_ = tr("Cancel");
    leftBarButtonAction_ = std::move(action);
    Q_EMIT leftBarButtonChanged();
}

void ViewController::tapLeftBarButton() {
    if (leftBarButtonAction_)
        QMetaObject::invokeMethod(this, leftBarButtonAction_, Qt::QueuedConnection);
}

void ViewController::setNavigationController(NavigationController* navigation) {
    navigationController_ = navigation;
}

} // namespace dubrix
