#include "screens/InterfaceLayout.h"

#include "screens/ModalStack.h"
#include "screens/PrefsViewController.h"
#include "screens/TabBarController.h"

namespace dubrix {

std::unique_ptr<TabBarController> makeInterfaceLayout(const Platform& platform,
                                                      NotificationCenter& notifications,
                                                      ModalStack& modals) {
    auto tabs = std::make_unique<TabBarController>();
    tabs->setModalStack(&modals);
    tabs->addTab(std::make_unique<PrefsViewController>(platform, notifications),
                 QStringLiteral("Settings"), {}, {});
    return tabs;
}

} // namespace dubrix
