#pragma once

#include "platform/Platform.h"

#include <memory>

namespace dubrix {

class ModalStack;
class NotificationCenter;
class TabBarController;
struct AboutServices;

/// What the application's main interface layout holds: the tab bar controller with its tabs and
/// the screen in each. `modals` takes the window's modal screens; the screens tell each other news
/// through `notifications`.
std::unique_ptr<TabBarController> makeInterfaceLayout(const Platform& platform,
                                                      NotificationCenter& notifications,
                                                      const AboutServices& about,
                                                      ModalStack& modals);

} // namespace dubrix
