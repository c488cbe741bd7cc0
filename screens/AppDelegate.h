#pragma once

#include <memory>

namespace dubrix {

class TabBarController;

/// The application's window: what stands at its root.
struct Window {
    std::unique_ptr<TabBarController> rootViewController;
};

/// Orientations that a window may be turned to; a mask.
enum InterfaceOrientation : unsigned {
    OrientationPortrait = 1U << 1,
    OrientationPortraitUpsideDown = 1U << 2,
    OrientationLandscapeRight = 1U << 3,
    OrientationLandscapeLeft = 1U << 4,
};

class AppDelegate {
public:
    /// Gives the first tab its two images. True: the application may go on.
    bool applicationDidFinishLaunchingWithOptions();
    /// All four, as a mask.
    unsigned applicationSupportedInterfaceOrientationsForWindow() const;

    void applicationWillResignActive() {}
    void applicationDidEnterBackground() {}
    void applicationWillEnterForeground() {}
    void applicationDidBecomeActive() {}
    void applicationWillTerminate() {}

    /// Set from the interface layout.
    Window window;
};

} // namespace dubrix
