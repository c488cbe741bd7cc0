#include "overlays/ProgressHUD.h"

#include "overlays/HudLayout.h"

#include <mutex>
#include <utility>

namespace dubrix {

namespace {

constexpr Color clear{};
constexpr Font labelFont{.pointSize = 16, .bold = true};
constexpr HudAppearance hudAppearance{.frame = {},
                                      .translucent = true,
                                      .backgroundColor = {0, 0, 0, 0.1},
                                      .cornerRadius = 10,
                                      .clipsToBounds = true};
constexpr Color dimming{0, 0, 0, 0.2};
constexpr SpinnerAppearance spinnerAppearance{.style = SpinnerStyle::WhiteLarge,
                                              .color = {185.0 / 255, 220.0 / 255, 47.0 / 255, 1},
                                              .hidesWhenStopped = true};
constexpr ImageAppearance imageAppearance{.frame = {{0, 0}, {28, 28}}};
constexpr LabelAppearance labelAppearance{.frame = {},
                                          .font = labelFont,
                                          .textColor = {0, 0, 0, 1},
                                          .backgroundColor = clear,
                                          .textAlignment = TextAlignment::Center,
                                          .baselineAdjustment = BaselineAdjustment::AlignCenters,
                                          .numberOfLines = 0};

constexpr Size largestText{200, 300};
constexpr double popDuration = 0.15;
constexpr double popInScale = 1.4;
constexpr double popOutScale = 0.7;

constexpr double secondsToHide = 0.5;
constexpr double secondsPerCharacter = 0.04;

constexpr const char* successImage = "ProgressHUD.bundle/progresshud-success.png";
constexpr const char* errorImage = "ProgressHUD.bundle/progresshud-error.png";

/// The stage in use and the instance that belongs to it, made once whoever asks first.
struct Shared {
    std::mutex mutex;
    OverlayStage* stage = nullptr;
    std::shared_ptr<ProgressHUD> instance;
};

Shared& sharedState() {
    static Shared state;
    return state;
}

/// UTF-8 spends one byte that does not continue another on each character, and those that need two
/// UTF-16 units are those of four bytes.
std::size_t utf16Length(const std::string& text) {
    std::size_t length = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        const bool continues = (byte & 0xC0) == 0x80;
        if (!continues)
            length += byte >= 0xF0 ? 2 : 1;
    }
    return length;
}

std::optional<WindowId> windowToAttachTo(OverlayStage& stage) {
    const std::optional<WindowId> declared = stage.delegateWindow();
    return declared ? declared : stage.keyWindow();
}

} // namespace

void ProgressHUD::useStage(OverlayStage& stage) {
    withdrawStage();
    Shared& state = sharedState();
    const std::lock_guard lock(state.mutex);
    state.stage = &stage;
}

void ProgressHUD::withdrawStage() {
    Shared& state = sharedState();
    std::unique_lock lock(state.mutex);
    OverlayStage* const stage = std::exchange(state.stage, nullptr);
    const auto instance = std::exchange(state.instance, nullptr);
    lock.unlock();
    if (instance) {
        stage->cancelThreads();
        instance->hudDestroy();
    }
}

ProgressHUD* ProgressHUD::shared() {
    Shared& state = sharedState();
    const std::lock_guard lock(state.mutex);
    if (state.stage && !state.instance)
        state.instance = std::make_shared<ProgressHUD>(Key{}, *state.stage);
    return state.instance.get();
}

void ProgressHUD::show(const Text& message) {
    show(message, true);
}

void ProgressHUD::show(const Text& message, bool interaction) {
    show(message, interaction, std::nullopt, Spin::Yes, Hide::No);
}

void ProgressHUD::showSuccess(const Text& message) {
    showSuccess(message, true);
}

void ProgressHUD::showSuccess(const Text& message, bool interaction) {
    show(message, interaction, successImage, Spin::No, Hide::Yes);
}

void ProgressHUD::showError(const Text& message) {
    showError(message, true);
}

void ProgressHUD::showError(const Text& message, bool interaction) {
    show(message, interaction, errorImage, Spin::No, Hide::Yes);
}

void ProgressHUD::show(const Text& message, bool interaction, const Text& image, Spin spin,
                       Hide hide) {
    ProgressHUD* hud = shared();
    if (!hud)
        return;
    hud->interaction_ = interaction;
    hud->hudMake(message, image, spin, hide);
}

void ProgressHUD::dismiss() {
    if (ProgressHUD* hud = shared())
        hud->hudHide();
}

ProgressHUD::ProgressHUD(Key, OverlayStage& stage)
    : stage_(stage),
      frame_(stage.mainScreenBounds()),
      window_(windowToAttachTo(stage)),
      labelLength_(std::make_shared<std::atomic<std::size_t>>(0)) {}

void ProgressHUD::hudMake(const Text& message, const Text& image, Spin spin, Hide hide) {
    hudCreate();
    stage_.setLabelText(message);
    *labelLength_ = utf16Length(message.value_or(""));
    stage_.change(Piece::Label, {.hidden = !message});
    stage_.setImage(image);
    stage_.change(Piece::Image, {.hidden = !image});
    if (spin == Spin::Yes)
        stage_.startSpinner();
    else
        stage_.stopSpinner();
    hudSize(message);
    hudPosition(std::nullopt);
    hudShow();
    if (hide == Hide::Yes)
        stage_.runOnNewThread([&stage = stage_, labelLength = labelLength_,
                               self = weak_from_this()] { timedHide(stage, *labelLength, self); });
}

void ProgressHUD::hudCreate() {
    if (hudMade_)
        return;
    hudMade_ = true;
    hudScale_ = 1;
    stage_.makeHud(hudAppearance);
    registerNotifications();
    if (window_ && interaction_) {
        stage_.addToWindow(Piece::Hud, *window_);
    } else if (window_) {
        stage_.makeBackground({.frame = stage_.windowFrame(*window_), .backgroundColor = dimming});
        backgroundMade_ = true;
        stage_.addToWindow(Piece::Background, *window_);
        stage_.addToPiece(Piece::Hud, Piece::Background);
    }
    stage_.makeSpinner(spinnerAppearance);
    stage_.makeImage(imageAppearance);
    stage_.makeLabel(labelAppearance);
    for (const Piece piece : {Piece::Spinner, Piece::Image, Piece::Label})
        stage_.addToPiece(piece, Piece::Hud);
}

void ProgressHUD::registerNotifications() {
    using enum OverlayNotification::Name;
    for (const auto name : {UIApplicationDidChangeStatusBarOrientationNotification,
                            UIKeyboardWillHideNotification, UIKeyboardDidHideNotification,
                            UIKeyboardWillShowNotification, UIKeyboardDidShowNotification})
        stage_.observe(name, [self = weak_from_this()](const OverlayNotification& notification) {
            if (const auto hud = self.lock())
                hud->hudPosition(notification);
        });
}

void ProgressHUD::hudDestroy() {
    stage_.stopObserving();
    if (hudMade_)
        for (const Piece piece : {Piece::Label, Piece::Image, Piece::Spinner, Piece::Hud})
            stage_.removeFromParent(piece);
    if (backgroundMade_)
        stage_.removeFromParent(Piece::Background);
    hudMade_ = backgroundMade_ = false;
}

void ProgressHUD::hudSize(const Text& message) {
    std::optional<Size> text;
    if (message)
        text = stage_.measureText(*message, labelFont, largestText);
    const HudLayout layout = layoutAround(text);
    stage_.change(Piece::Label, {.frame = layout.label});
    stage_.change(Piece::Hud, {.bounds = layout.box});
    stage_.change(Piece::Spinner, {.center = layout.mark});
    stage_.change(Piece::Image, {.center = layout.mark});
}

void ProgressHUD::hudPosition(const std::optional<OverlayNotification>& notification) {
    const Orientation orientation = stage_.statusBarOrientation();
    const double duration = notification ? notification->animationDuration : 0;
    const double keyboard =
        notification ? keyboardHeightAfter(*notification, orientation) : keyboardHeight();
    const Point center = boxCenter(stage_.mainScreenBounds().size, orientation, keyboard);
    stage_.animate(Piece::Hud, {.center = center},
                   {.duration = duration, .allowUserInteraction = true}, nullptr);
}

double ProgressHUD::keyboardHeight() {
    for (const WindowContents& window : stage_.windows()) {
        // The keyboard has a window of a class of its own.
        if (window.className == "UIWindow")
            continue;
        for (const WindowContents::Subview& view : window.subviews)
            if (view.className == "UIPeripheralHostView" || view.className == "UIKeyboard")
                return view.height;
    }
    return 0;
}

void ProgressHUD::hudShow() {
    if (alpha_ != 0)
        return;
    alpha_ = 1;
    hudScale_ *= popInScale;
    stage_.change(Piece::Hud, {.alpha = 0});
    stage_.change(Piece::Hud, {.scale = hudScale_});
    hudScale_ /= popInScale;
    stage_.animate(Piece::Hud, {.alpha = 1, .scale = hudScale_},
                   {.duration = popDuration, .allowUserInteraction = true}, nullptr);
}

void ProgressHUD::hudHide() {
    if (alpha_ != 1)
        return;
    hudScale_ *= popOutScale;
    stage_.animate(Piece::Hud, {.alpha = 0, .scale = hudScale_},
                   {.duration = popDuration, .layoutSubviews = true, .allowUserInteraction = true},
                   [self = weak_from_this()] {
                       if (const auto hud = self.lock()) {
                           hud->hudDestroy();
                           hud->alpha_ = 0;
                       }
                   });
}

void ProgressHUD::timedHide(OverlayStage& stage, const std::atomic<std::size_t>& labelLength,
                            const std::weak_ptr<ProgressHUD>& self) {
    const double seconds =
        secondsPerCharacter * static_cast<double>(labelLength.load()) + secondsToHide;
    if (!stage.sleep(seconds))
        return;
    stage.runOnMainThread([self] {
        if (const auto hud = self.lock())
            hud->hudHide();
    });
}

} // namespace dubrix
