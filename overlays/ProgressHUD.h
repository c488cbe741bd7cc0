#pragma once

#include "overlays/OverlayStage.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace dubrix {

/// The small status box that floats over everything and says that work is under way, done or
/// failed. One shared instance, driven by the class operations; it sizes itself to its message,
/// keeps clear of the on-screen keyboard, and can hide itself after a delay that grows with the
/// message. It decides sizes, places and times and leaves the drawing to an OverlayStage.
///
/// Main thread only. Without a stage the class operations do nothing. A message is UTF-8, or none;
/// an empty message is a message. `interaction` true leaves the screen around the box usable, false
/// covers the window with a dimming layer, when the operation is the one that brings the box up.
/// A show while the box is shown replaces what it says in place; one that comes while it shrinks
/// away does the same, and goes away with it.
class ProgressHUD : public std::enable_shared_from_this<ProgressHUD> {
    struct Key {
        explicit Key() = default;
    };

public:
    /// Gives the overlay its stage, in place of the one before. The stage must live until it is
    /// withdrawn.
    static void useStage(OverlayStage& stage);
    /// Takes the stage away: ends the threads that wait to hide the box without waiting their time
    /// out, removes the box, forgets the shared instance. What the stage still runs of it later
    /// does nothing.
    static void withdrawStage();

    /// Runs the spinner until the next operation.
    static void show(const std::optional<std::string>& message);
    static void show(const std::optional<std::string>& message, bool interaction);
    /// Show an image and hide by themselves.
    static void showSuccess(const std::optional<std::string>& message);
    static void showSuccess(const std::optional<std::string>& message, bool interaction);
    static void showError(const std::optional<std::string>& message);
    static void showError(const std::optional<std::string>& message, bool interaction);
    /// Hides the box now; nothing when it is hidden.
    static void dismiss();

    /// The instance, made on first use; null without a stage. Valid until the stage is withdrawn.
    static ProgressHUD* shared();

    ProgressHUD(Key, OverlayStage& stage);
    ProgressHUD(const ProgressHUD&) = delete;
    ProgressHUD& operator=(const ProgressHUD&) = delete;

    /// The instance itself is never on the screen: its alpha, 0 or 1, only tells whether the
    /// overlay counts as shown. It stays 1 until the box has gone.
    double alpha() const { return alpha_; }
    bool interaction() const { return interaction_; }
    /// The main screen's bounds when the instance was made.
    const Rect& frame() const { return frame_; }

private:
    enum class Spin : bool { No, Yes };
    enum class Hide : bool { No, Yes };

    using Text = std::optional<std::string>;

    /// The common body of the shows, on the shared instance.
    static void show(const Text& message, bool interaction, const Text& image, Spin spin,
                     Hide hide);

    void hudMake(const Text& message, const Text& image, Spin spin, Hide hide);
    void hudCreate();
    void registerNotifications();
    void hudDestroy();
    void hudSize(const Text& message);
    /// After the keyboard or the orientation changed, or, without a notification, for things as
    /// they are.
    void hudPosition(const std::optional<OverlayNotification>& notification);
    /// How much of the screen the keyboard takes now, in points; 0 without one.
    double keyboardHeight();
    void hudShow();
    void hudHide();
    /// On a thread of its own: waits as long as the message takes to read, then has the main
    /// thread hide whatever the box shows by then.
    static void timedHide(OverlayStage& stage, const std::atomic<std::size_t>& labelLength,
                          const std::weak_ptr<ProgressHUD>& self);

    OverlayStage& stage_;
    const Rect frame_;
    const std::optional<WindowId> window_;
    double alpha_ = 0;
    bool interaction_ = false;

    bool backgroundMade_ = false;
    bool hudMade_ = false; ///< with all that lies in it
    double hudScale_ = 1;  ///< where the box's transform stands or is moving to

    /// The label's text in UTF-16 code units, shared with the threads that wait to hide the box:
    /// they may read it while the main thread sets the next message.
    std::shared_ptr<std::atomic<std::size_t>> labelLength_;
};

} // namespace dubrix
