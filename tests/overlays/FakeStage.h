#pragma once

#include "overlays/OverlayStage.h"

#include <map>
#include <utility>

namespace dubrix {

/// A stage that draws nothing: it keeps what each piece was told, the order of what was done, and
/// a clock that only `advance` moves. Its threads run within runOnNewThread, or when they are let
/// go, and their sleep only dates what they post. Touching a piece that is not there throws.
class FakeStage : public OverlayStage {
public:
    using Notified = std::function<void(const OverlayNotification&)>;
    using Work = std::function<void()>;

    // What the platform is like.
    Rect screen{{0, 0}, {320, 480}};
    Orientation orientation = Orientation::Portrait;
    std::optional<WindowId> delegate = WindowId{7};
    std::vector<WindowContents> contents;
    Size measured{150, 20};
    bool holdThreads = false;

    // What became of it.
    std::vector<std::string> log;
    std::map<Piece, PieceChange> pieces;
    std::optional<std::string> text, image;
    bool spinning = false;
    std::vector<std::pair<PieceChange, Animation>> animations;
    std::vector<std::pair<OverlayNotification::Name, Notified>> handlers;
    std::vector<double> sleeps;

    void advance(double seconds) {
        now_ += seconds;
        while (!due_.empty() && due_.begin()->first <= now_ + 1e-9)
            due_.extract(due_.begin()).mapped()();
    }
    void letThreadsGo() {
        for (const Work& thread : std::exchange(held_, {})) {
            threadTime_ = now_;
            thread();
        }
    }
    void notify(const OverlayNotification& notification) {
        for (const auto& [name, handler] : std::vector(handlers))
            if (name == notification.name)
                handler(notification);
    }
    bool shows() const { return pieces.count(Piece::Hud) != 0; }

    Rect mainScreenBounds() override { return screen; }
    Orientation statusBarOrientation() override { return orientation; }
    std::optional<WindowId> delegateWindow() override { return delegate; }
    std::optional<WindowId> keyWindow() override { return WindowId{8}; }
    Rect windowFrame(WindowId) override { return {{0, 20}, {320, 460}}; }
    std::vector<WindowContents> windows() override { return contents; }
    Size measureText(const std::string&, const Font&, Size) override { return measured; }
    void makeBackground(const BackgroundAppearance&) override { make(Piece::Background); }
    void makeHud(const HudAppearance&) override { make(Piece::Hud); }
    void makeSpinner(const SpinnerAppearance&) override { make(Piece::Spinner); }
    void makeImage(const ImageAppearance&) override { make(Piece::Image); }
    void makeLabel(const LabelAppearance&) override { make(Piece::Label); }
    void addToWindow(Piece piece, WindowId window) override {
        note("add " + name(piece) + " to window " + std::to_string(static_cast<int>(window)));
    }
    void addToPiece(Piece piece, Piece parent) override {
        note("add " + name(piece) + " to " + name(parent));
    }
    void removeFromParent(Piece piece) override {
        note("remove " + name(piece));
        pieces.erase(piece);
    }
    void change(Piece piece, const PieceChange& given) override {
        note("change " + name(piece) + apply(piece, given));
    }
    void setLabelText(const std::optional<std::string>& given) override {
        note("text");
        text = given;
    }
    void setImage(const std::optional<std::string>& fileName) override {
        note("image");
        image = fileName;
    }
    void startSpinner() override { spinning = note("start spinner"); }
    void stopSpinner() override { spinning = !note("stop spinner"); }
    void animate(Piece piece, const PieceChange& given, const Animation& animation,
                 Work completion) override {
        note("animate " + name(piece) + apply(piece, given));
        animations.emplace_back(given, animation);
        if (completion)
            due_.emplace(now_ + animation.duration, std::move(completion));
    }
    void observe(OverlayNotification::Name given, Notified handler) override {
        handlers.emplace_back(given, std::move(handler));
    }
    void stopObserving() override { handlers.clear(); }
    void runOnMainThread(Work work) override { due_.emplace(threadTime_, std::move(work)); }
    void runOnNewThread(Work work) override {
        held_.push_back(std::move(work));
        if (!holdThreads)
            letThreadsGo();
    }
    bool sleep(double seconds) override {
        sleeps.push_back(seconds);
        threadTime_ += seconds;
        return true;
    }
    void cancelThreads() override { held_.clear(); }

private:
    static std::string name(Piece piece) {
        static const char* const names[] = {"background", "hud", "spinner", "image", "label"};
        return names[static_cast<int>(piece)];
    }
    bool note(const std::string& what) {
        log.push_back(what);
        return true;
    }
    void make(Piece piece) {
        note("make " + name(piece));
        pieces[piece] = {};
    }
    /// The names of the properties that were given.
    std::string apply(Piece piece, const PieceChange& given) {
        PieceChange& state = pieces.at(piece);
        std::string names;
        const auto set = [&](const char* property, auto PieceChange::* value) {
            if (!(given.*value))
                return;
            state.*value = given.*value;
            names += property;
        };
        set(" bounds", &PieceChange::bounds);
        set(" frame", &PieceChange::frame);
        set(" center", &PieceChange::center);
        set(" alpha", &PieceChange::alpha);
        set(" scale", &PieceChange::scale);
        set(" hidden", &PieceChange::hidden);
        return names;
    }

    double now_ = 0;
    double threadTime_ = 0;
    std::multimap<double, Work> due_;
    std::vector<Work> held_;
};

} // namespace dubrix
