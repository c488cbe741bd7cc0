#pragma once

#include "overlays/Pieces.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace dubrix {

/// How the status bar stands. The platform may report values outside these.
enum class Orientation { Unknown = 0, Portrait, UpsideDown, LandscapeLeft, LandscapeRight };

/// Names a window of the application for as long as the window lives.
enum class WindowId : int {};

/// A window and what lies directly in it, both with the exact name of their class.
struct WindowContents {
    struct Subview {
        std::string className;
        double height = 0; ///< of its bounds
    };

    std::string className;
    std::vector<Subview> subviews; ///< from back to front
};

/// A notification that moves the box, as it arrives.
struct OverlayNotification {
    enum class Name {
        UIApplicationDidChangeStatusBarOrientationNotification,
        UIKeyboardWillHideNotification,
        UIKeyboardDidHideNotification,
        UIKeyboardWillShowNotification,
        UIKeyboardDidShowNotification,
    };

    Name name;
    /// UIKeyboardAnimationDurationUserInfoKey, in seconds; 0 for an orientation change.
    double animationDuration = 0;
    /// UIKeyboardFrameBeginUserInfoKey, not turned with the screen; empty for an orientation
    /// change.
    Rect keyboardFrameBegin = {};
};

/// What the status overlay asks of the platform that draws it. The pieces are the stage's own; the
/// overlay names them and never draws. All calls come on the main thread, all lengths are in
/// points, all durations in seconds, unless an operation says otherwise. Nothing here fails: an
/// operation on a piece that was not made, or was forgotten since, does nothing.
class OverlayStage {
public:
    virtual ~OverlayStage() = default;

    /// The main screen, always measured along its portrait axes.
    virtual Rect mainScreenBounds() = 0;
    virtual Orientation statusBarOrientation() = 0;
    /// The window that the application's delegate declares, if it declares one.
    virtual std::optional<WindowId> delegateWindow() = 0;
    /// The window that takes the keyboard's input, if there is one.
    virtual std::optional<WindowId> keyWindow() = 0;
    virtual Rect windowFrame(WindowId window) = 0;
    /// All windows of the application, in the platform's order, those of the on-screen keyboard
    /// included.
    virtual std::vector<WindowContents> windows() = 0;
    /// The bounding box of a UTF-8 text wrapped within `limit`: measured from the origin of the
    /// line fragment, with the font's leading, the last line that fits truncated.
    virtual Size measureText(const std::string& text, const Font& font, Size limit) = 0;

    /// Each makes its piece afresh: without a parent, opaque, unscaled, not hidden, empty and, in
    /// the spinner's case, stopped. A piece of the same kind made before is forgotten.
    virtual void makeBackground(const BackgroundAppearance& appearance) = 0;
    virtual void makeHud(const HudAppearance& appearance) = 0;
    virtual void makeSpinner(const SpinnerAppearance& appearance) = 0;
    virtual void makeImage(const ImageAppearance& appearance) = 0;
    virtual void makeLabel(const LabelAppearance& appearance) = 0;

    /// Puts the piece on top of what the parent holds already.
    virtual void addToWindow(Piece piece, WindowId window) = 0;
    virtual void addToPiece(Piece piece, Piece parent) = 0;
    /// Takes the piece from its parent, with all that lies in it, and forgets it.
    virtual void removeFromParent(Piece piece) = 0;

    /// Sets the given properties at once.
    virtual void change(Piece piece, const PieceChange& properties) = 0;
    /// The message in UTF-8, or none.
    virtual void setLabelText(const std::optional<std::string>& text) = 0;
    /// A file of the application's resources, or none.
    virtual void setImage(const std::optional<std::string>& fileName) = 0;
    virtual void startSpinner() = 0;
    virtual void stopSpinner() = 0;

    /// Moves the given properties to their new values, without delay. A duration of 0 changes them
    /// before the call returns. A later change of the same property takes over from what is seen
    /// then. `completion`, when not empty, runs exactly once, when the duration has passed, also
    /// when the animation was overtaken or its piece removed meanwhile.
    virtual void animate(Piece piece, const PieceChange& properties, const Animation& animation,
                         std::function<void()> completion) = 0;

    /// Calls `handler` on the main thread at each notification of that name until stopObserving.
    virtual void observe(OverlayNotification::Name name,
                         std::function<void(const OverlayNotification&)> handler) = 0;
    /// Ends every observation that observe began.
    virtual void stopObserving() = 0;

    /// From any thread: runs `work` on the main thread later, never within this call. Works run in
    /// the order given; what has not run when the stage ends is dropped.
    virtual void runOnMainThread(std::function<void()> work) = 0;
    /// Runs `work` on a new thread. It is not run when the system has no thread left to give, and
    /// must not throw.
    virtual void runOnNewThread(std::function<void()> work) = 0;
    /// On a thread of runOnNewThread only: lets it sleep. False as soon as cancelThreads wants the
    /// thread to end; the work then returns without further calls.
    virtual bool sleep(double seconds) = 0;
    /// Wakes the threads of runOnNewThread and waits until all have ended.
    virtual void cancelThreads() = 0;
};

} // namespace dubrix
