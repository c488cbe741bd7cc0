#pragma once

#include "overlays/OverlayStage.h"

#include <map>
#include <utility>
#include <variant>

namespace dubrix {

/// A stage that draws nothing: it keeps how each piece looks, where it lies and what it was told,
/// and a clock that only `advance` moves. Threads begin when the clock is moved next, and their
/// sleep only dates what they post. Touching a piece that is not there throws.
class FakeStage : public OverlayStage {
public:
    using Notified = std::function<void(const OverlayNotification&)>;
    using Work = std::function<void()>;
    using Look = std::variant<BackgroundAppearance, HudAppearance, SpinnerAppearance,
                              ImageAppearance, LabelAppearance>;
    using Parent = std::variant<std::monostate, Piece, WindowId>;

    struct Drawn : PieceChange {
        Look look;
        Parent parent;
    };
    struct Animated {
        PieceChange from, to;
        Animation how;
    };

    // What the platform is like.
    Rect screen{{0, 0}, {320, 480}};
    Orientation orientation = Orientation::Portrait;
    std::optional<WindowId> delegate = WindowId{7};
    std::vector<WindowContents> contents;
    Size measured{150, 20};
    Work whenTold = [] {};

    // What became of it.
    int calls = 0;
    std::map<Piece, Drawn> pieces;
    std::optional<std::string> text, image;
    bool spinning = false;
    std::pair<Font, Size> measuredBy;
    std::vector<Animated> animations;
    std::vector<std::pair<OverlayNotification::Name, Notified>> handlers;

    void advance(double seconds) {
        for (const Work& thread : std::exchange(threads_, {})) {
            threadTime_ = now_;
            thread();
        }
        now_ += seconds;
        while (!due_.empty() && due_.begin()->first <= now_ + 1e-9)
            due_.extract(due_.begin()).mapped()();
    }
    void notify(const OverlayNotification& notification) {
        for (const auto& [name, handler] : std::vector(handlers))
            if (name == notification.name)
                handler(notification);
    }
    bool shows() const { return pieces.contains(Piece::Hud); }

    Rect mainScreenBounds() override { return screen; }
    Orientation statusBarOrientation() override { return orientation; }
    std::optional<WindowId> delegateWindow() override { return delegate; }
    std::optional<WindowId> keyWindow() override { return WindowId{8}; }
    Rect windowFrame(WindowId window) override {
        return {{0, 20}, {320, 460 + static_cast<double>(window)}};
    }
    std::vector<WindowContents> windows() override { return contents; }
    Size measureText(const std::string&, const Font& font, Size limit) override {
        measuredBy = {font, limit};
        return measured;
    }
    void makeBackground(const BackgroundAppearance& look) override {
        make(Piece::Background, look);
    }
    void makeHud(const HudAppearance& look) override { make(Piece::Hud, look); }
    void makeSpinner(const SpinnerAppearance& look) override { make(Piece::Spinner, look); }
    void makeImage(const ImageAppearance& look) override { make(Piece::Image, look); }
    void makeLabel(const LabelAppearance& look) override { make(Piece::Label, look); }
    void addToWindow(Piece piece, WindowId window) override { touched(piece).parent = window; }
    void addToPiece(Piece piece, Piece parent) override { touched(piece).parent = parent; }
    void removeFromParent(Piece piece) override {
        touched(piece);
        pieces.erase(piece);
    }
    void change(Piece piece, const PieceChange& given) override { apply(touched(piece), given); }
    void setLabelText(const std::optional<std::string>& given) override {
        touched(Piece::Label);
        text = given;
        whenTold();
    }
    void setImage(const std::optional<std::string>& fileName) override {
        touched(Piece::Image);
        image = fileName;
    }
    void startSpinner() override { touched(Piece::Spinner), spinning = true; }
    void stopSpinner() override { touched(Piece::Spinner), spinning = false; }
    void animate(Piece piece, const PieceChange& given, const Animation& animation,
                 Work completion) override {
        animations.push_back({touched(piece), given, animation});
        apply(pieces.at(piece), given);
        if (completion)
            due_.emplace(now_ + animation.duration, std::move(completion));
    }
    void observe(OverlayNotification::Name given, Notified handler) override {
        handlers.emplace_back(given, std::move(handler));
    }
    void stopObserving() override { handlers.clear(); }
    void runOnMainThread(Work work) override { due_.emplace(threadTime_, std::move(work)); }
    void runOnNewThread(Work work) override { threads_.push_back(std::move(work)); }
    bool sleep(double seconds) override {
        ++calls;
        threadTime_ += seconds;
        return true;
    }
    void cancelThreads() override { threads_.clear(); }

private:
    void make(Piece piece, const Look& look) { pieces[piece] = {{}, look, {}}; }
    Drawn& touched(Piece piece) {
        ++calls;
        return pieces.at(piece);
    }
    static void apply(PieceChange& state, const PieceChange& given) {
        const auto set = [](auto& value, const auto& now) { value = now ? now : value; };
        set(state.bounds, given.bounds);
        set(state.frame, given.frame);
        set(state.center, given.center);
        set(state.alpha, given.alpha);
        set(state.scale, given.scale);
        set(state.hidden, given.hidden);
    }

    double now_ = 0;
    double threadTime_ = 0;
    std::multimap<double, Work> due_;
    std::vector<Work> threads_;
};

} // namespace dubrix
