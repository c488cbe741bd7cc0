#pragma once

#include "platform/Platform.h"
#include "screens/AppDelegate.h"
#include "screens/ArchiveDrop.h"
#include "screens/NotificationCenter.h"
#include "screens/containers/ModalStack.h"
#include "screens/overlay/QuickOverlayStage.h"

#include <memory>

class QQuickWindow;

namespace dubrix {

struct AboutServices;
class WindowProgram;

/// The application's screens in the program's window, the status overlay over them and the archives
/// that are dropped on them.
class ApplicationWindow {
public:
    ApplicationWindow(WindowProgram& program, const Platform& platform, const AboutServices& about);
    ~ApplicationWindow();
    ApplicationWindow(const ApplicationWindow&) = delete;
    ApplicationWindow& operator=(const ApplicationWindow&) = delete;

    /// Shows the window until it is closed; the exit status.
    int run();

private:
    void tellOutcomes(const QQuickWindow& window);

    WindowProgram& program_;
    const ApplicationList& applications_;
    QuickOverlayStage stage_;
    NotificationCenter notifications_;
    ModalStack modals_;
    AppDelegate delegate_;
    std::unique_ptr<ArchiveDrop> drops_;
};

} // namespace dubrix
