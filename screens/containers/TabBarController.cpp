#include "screens/containers/TabBarController.h"

#include "screens/containers/NavigationController.h"
#include "screens/containers/OwnedList.h"

namespace dubrix {

void TabBarController::addTab(std::unique_ptr<ViewController> screen, const QString& title,
                              const TemplateImage& image, const TemplateImage& selectedImage) {
    auto item = std::make_unique<TabBarItem>();
    item->title = title;
    item->image = image;
    item->selectedImage = selectedImage;
    items_.push_back(std::move(item));
    screen->setModalStack(modalStack());
    if (const auto* navigation = qobject_cast<NavigationController*>(screen.get()))
        connect(navigation, &NavigationController::viewControllersChanged, this,
                &TabBarController::tabBarHiddenChanged);
    viewControllers_.push_back(std::move(screen));
}

void TabBarController::setSelectedIndex(int index) {
    if (index < 0 || index >= static_cast<int>(viewControllers_.size()) ||
        index == std::exchange(selectedIndex_, index))
        return;
    viewControllers_[static_cast<std::size_t>(index)]->loadViewIfNeeded();
    Q_EMIT selectedIndexChanged();
    Q_EMIT tabBarHiddenChanged();
}

bool TabBarController::tabBarHidden() const {
    if (selectedIndex_ < 0)
        return false;
    const auto* navigation = qobject_cast<NavigationController*>(
        viewControllers_[static_cast<std::size_t>(selectedIndex_)].get());
    return navigation && navigation->topViewController()->hidesBottomBarWhenPushed();
}

QQmlListProperty<TabBarItem> TabBarController::itemList() {
    return {this, &items_, countOf<TabBarItem>, elementOf<TabBarItem>};
}

QQmlListProperty<ViewController> TabBarController::viewControllerList() {
    return {this, &viewControllers_, countOf<ViewController>, elementOf<ViewController>};
}

} // namespace dubrix
