#pragma once

#include "engine/Text.h"
#include "overlays/Geometry.h"

#include <functional>
#include <string>

namespace dubrix {

/// What a button of an alert does. Never null: an empty function body stands where nothing is to
/// happen.
using AlertBlock = std::function<void()>;

/// The pipeline's alert without buttons, shown while it works.
struct ProgressAlert {
    std::string title;
    std::string message;
    /// Where the turning spinner stands, in points of the main screen's view; its margins are
    /// flexible on all four sides.
    Rect spinnerFrame;
};

/// The questions and messages that the engine puts to the user. Main thread only. Every operation
/// returns at once; a button starts its alert's dismissal before it runs its block, so a block may
/// show the next alert.
class Alerts {
public:
    virtual ~Alerts() = default;

    /// One button that only dismisses.
    virtual void showSimpleAlertWithTitle(const Text& title, const Text& message,
                                          const std::string& okText) = 0;

    /// Two buttons, the cancel button first (left).
    virtual void show2ButtonAlertWithTitle(const Text& title, const Text& message,
                                           const std::string& okButton,
                                           const std::string& cancelButton, AlertBlock cancelBlock,
                                           AlertBlock okBlock) = 0;

    /// Three buttons in the order first, second, cancel. The cancel button has no block of its
    /// own: it runs `secondBlock`.
    virtual void show3ButtonAlertWithTitle(const Text& title, const Text& message,
                                           const std::string& firstButton,
                                           const std::string& secondButton,
                                           const std::string& cancelButton, AlertBlock firstBlock,
                                           AlertBlock secondBlock) = 0;

    /// Presents the progress alert without animation; it stays until it is dismissed.
    virtual void presentProgressAlert(const ProgressAlert& alert) = 0;

    /// Dismisses the progress alert, animated.
    virtual void dismissProgressAlert() = 0;

    /// The size of the main screen's view in points; zero while there is no view.
    virtual Size mainViewSize() const = 0;
};

} // namespace dubrix
