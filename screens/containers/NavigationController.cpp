#include "screens/containers/NavigationController.h"

#include "screens/containers/OwnedList.h"

namespace dubrix {

NavigationController::NavigationController(std::unique_ptr<ViewController> root) {
    viewControllers_.push_back(std::move(root));
}

NavigationController::~NavigationController() = default;

void NavigationController::adopt(ViewController& screen) {
    screen.setNavigationController(this);
    screen.setModalStack(modalStack());
    screen.loadViewIfNeeded();
}

void NavigationController::viewDidLoad() {
    adopt(*topViewController());
}

void NavigationController::pushViewController(std::unique_ptr<ViewController> screen) {
    adopt(*screen);
    viewControllers_.push_back(std::move(screen));
    Q_EMIT viewControllersChanged();
}

void NavigationController::popViewController() {
    if (!canGoBack())
        return;
    ViewController* popped = viewControllers_.back().release();
    viewControllers_.pop_back();
    topViewController()->viewWillAppear();
    Q_EMIT viewControllersChanged();
    popped->deleteLater();
}

QString NavigationController::backTitle() const {
    return canGoBack() ? viewControllers_[viewControllers_.size() - 2]->title() : QString();
}

QQmlListProperty<ViewController> NavigationController::viewControllerList() {
    return {this, &viewControllers_, countOf<ViewController>, elementOf<ViewController>};
}

} // namespace dubrix
