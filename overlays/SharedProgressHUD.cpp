#include "overlays/ProgressHUD.h"

#include <mutex>
#include <utility>

namespace dubrix {

namespace {

constexpr const char* kSuccessImage = "ProgressHUD.bundle/progresshud-success.png";
constexpr const char* kErrorImage = "ProgressHUD.bundle/progresshud-error.png";

/// The stage in use and the instance that belongs to it.
struct Shared {
    std::mutex mutex;
    OverlayStage* stage = nullptr;
    std::shared_ptr<ProgressHUD> instance;
};

Shared& sharedState() {
    static Shared state;
    return state;
}

} // namespace

void ProgressHUD::useStage(OverlayStage& stage) {
    withdrawStage();
    Shared& state = sharedState();
    const std::lock_guard lock(state.mutex);
    state.stage = &stage;
}

void ProgressHUD::withdrawStage() {
    OverlayStage* stage = nullptr;
    std::shared_ptr<ProgressHUD> instance;
    {
        Shared& state = sharedState();
        const std::lock_guard lock(state.mutex);
        stage = std::exchange(state.stage, nullptr);
        instance = std::exchange(state.instance, nullptr);
    }
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
    show(message, interaction, kSuccessImage, Spin::No, Hide::Yes);
}

void ProgressHUD::showError(const Text& message) {
    showError(message, true);
}

void ProgressHUD::showError(const Text& message, bool interaction) {
    show(message, interaction, kErrorImage, Spin::No, Hide::Yes);
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

} // namespace dubrix
