#pragma once

#include "overlays/OverlayStage.h"

#include <functional>

namespace dubrix {

/// The status overlay in a terminal, which has no room for pieces and no time to hide them: only
/// what it says is passed on.
class TerminalStage final : public OverlayStage {
public:
    /// Told of every message that comes with a mark; whether that is the one of success.
    std::function<void(const std::string& sentence, bool succeeded)> says;

    void setLabelText(const std::optional<std::string>& text) override {
        sentence_ = text.value_or("");
    }
    void setImage(const std::optional<std::string>& fileName) override {
        if (fileName && says)
            says(sentence_, fileName->find("success") != std::string::npos);
    }

    Rect mainScreenBounds() override { return {}; }
    Orientation statusBarOrientation() override { return Orientation::Portrait; }
    std::optional<WindowId> delegateWindow() override { return std::nullopt; }
    std::optional<WindowId> keyWindow() override { return std::nullopt; }
    Rect windowFrame(WindowId) override { return {}; }
    std::vector<WindowContents> windows() override { return {}; }
    Size measureText(const std::string&, const Font&, Size) override { return {}; }
    void makeBackground(const BackgroundAppearance&) override {}
    void makeHud(const HudAppearance&) override {}
    void makeSpinner(const SpinnerAppearance&) override {}
    void makeImage(const ImageAppearance&) override {}
    void makeLabel(const LabelAppearance&) override {}
    void addToWindow(Piece, WindowId) override {}
    void addToPiece(Piece, Piece) override {}
    void removeFromParent(Piece) override {}
    void change(Piece, const PieceChange&) override {}
    void startSpinner() override {}
    void stopSpinner() override {}
    void animate(Piece, const PieceChange&, const Animation&, std::function<void()>) override {}
    void observe(OverlayNotification::Name,
                 std::function<void(const OverlayNotification&)>) override {}
    void stopObserving() override {}
    void runOnMainThread(std::function<void()>) override {}
    void runOnNewThread(std::function<void()>) override {}
    bool sleep(double) override { return false; }
    void cancelThreads() override {}

private:
    std::string sentence_;
};

} // namespace dubrix
