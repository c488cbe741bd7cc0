#include "overlays/ProgressHUD.h"
#include "overlays/TimedWorkers.h"
#include "tests/overlays/FakeStage.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace dubrix {

using enum OverlayNotification::Name;

struct ProgressHUDTest : ::testing::Test {
    ProgressHUDTest() { ProgressHUD::useStage(stage); }
    ~ProgressHUDTest() override { ProgressHUD::withdrawStage(); }

    Point center() const { return stage.pieces.at(Piece::Hud).center.value(); }
    long count(const std::string& call) const {
        return std::count(stage.log.begin(), stage.log.end(), call);
    }

    FakeStage stage;
};

TEST_F(ProgressHUDTest, BuildsTheBoxInOrderAndTakesItDownInOrder) {
    ProgressHUD::showSuccess("done", false);
    const std::vector<std::string> built{"make hud",
                                         "make background",
                                         "add background to window 7",
                                         "add hud to background",
                                         "make spinner",
                                         "add spinner to hud",
                                         "make image",
                                         "add image to hud",
                                         "make label",
                                         "add label to hud",
                                         "text",
                                         "change label hidden",
                                         "image",
                                         "change image hidden",
                                         "stop spinner",
                                         "change label frame",
                                         "change hud bounds",
                                         "change spinner center",
                                         "change image center",
                                         "animate hud center",
                                         "change hud alpha",
                                         "change hud scale",
                                         "animate hud alpha scale"};
    EXPECT_EQ(stage.log, built);
    EXPECT_EQ(stage.handlers.size(), 5U);

    stage.log.clear();
    ProgressHUD::dismiss();
    stage.advance(0.14);
    EXPECT_EQ(stage.log, std::vector<std::string>{"animate hud alpha scale"});
    stage.advance(0.01);
    const std::vector<std::string> takenDown{
        "animate hud alpha scale", "remove label", "remove image",
        "remove spinner",          "remove hud",   "remove background"};
    EXPECT_EQ(stage.log, takenDown);
    EXPECT_TRUE(stage.handlers.empty());
}

TEST_F(ProgressHUDTest, EachShowSaysItsOwn) {
    const std::string success = "ProgressHUD.bundle/progresshud-success.png";
    const std::string error = "ProgressHUD.bundle/progresshud-error.png";
    const auto expect = [&](const std::optional<std::string>& image, std::size_t timedHides) {
        EXPECT_EQ(stage.text, "m");
        EXPECT_EQ(stage.image, image);
        EXPECT_EQ(stage.pieces.at(Piece::Image).hidden, !image);
        EXPECT_EQ(stage.spinning, !image);
        EXPECT_EQ(stage.sleeps.size(), timedHides);
        EXPECT_TRUE(ProgressHUD::shared()->interaction());
    };
    ProgressHUD::show("m");
    expect(std::nullopt, 0);
    ProgressHUD::showSuccess("m");
    expect(success, 1);
    ProgressHUD::show("m", true);
    expect(std::nullopt, 1);
    ProgressHUD::showError("m");
    expect(error, 2);
    EXPECT_EQ(count("add hud to window 7"), 1) << "placed, observed and popped in once";
    EXPECT_EQ(stage.handlers.size(), 5U);
    EXPECT_EQ(count("animate hud alpha scale"), 1);
    ProgressHUD::showError("m", false);
    EXPECT_EQ(count("make background"), 0) << "a box that is up stays where it is";
}

TEST_F(ProgressHUDTest, TheBoxFitsItsText) {
    struct Case {
        double textWidth, boxWidth, labelX, labelWidth;
    };
    for (const Case& c : {Case{50, 100, 0, 100}, Case{75.9, 100, 0, 100}, Case{76, 100, 12, 76},
                          Case{150, 174, 12, 150}, Case{0, 100, 0, 100}}) {
        stage.measured = {c.textWidth, 20};
        ProgressHUD::show(c.textWidth == 0 ? "" : "text");
        EXPECT_EQ(stage.pieces[Piece::Hud].bounds, (Size{c.boxWidth, 100})) << c.textWidth;
        EXPECT_EQ(stage.pieces[Piece::Label].frame, (Rect{{c.labelX, 66}, {c.labelWidth, 20}}));
        EXPECT_EQ(stage.pieces[Piece::Label].hidden, false);
        EXPECT_EQ(stage.pieces[Piece::Spinner].center, (Point{c.boxWidth / 2, 36}));
    }
    ProgressHUD::show(std::nullopt);
    EXPECT_EQ(stage.pieces[Piece::Hud].bounds, (Size{100, 100}));
    EXPECT_EQ(stage.pieces[Piece::Label].frame, Rect{});
    EXPECT_EQ(stage.pieces[Piece::Label].hidden, true);
    EXPECT_EQ(stage.pieces[Piece::Spinner].center, (Point{50, 50}));
    EXPECT_EQ(stage.pieces[Piece::Image].center, (Point{50, 50}));
}

TEST_F(ProgressHUDTest, TheBoxKeepsClearOfTheKeyboard) {
    const WindowContents decoy{"UIWindow", {{"UIKeyboard", 50}}};
    const WindowContents other{"UITextEffectsWindow",
                               {{"UIView", 60}, {"UIPeripheralHostView", 216}}};
    const WindowContents later{"UITextEffectsWindow", {{"UIKeyboard", 70}}};
    struct Case {
        int orientation;
        Point without, with;
    };
    for (const Case& c : {Case{1, {160, 240}, {160, 132}}, Case{2, {160, 240}, {160, 348}},
                          Case{3, {160, 240}, {268, 240}}, Case{4, {160, 240}, {52, 240}},
                          Case{0, {160, 240}, {160, 132}}, Case{9, {160, 240}, {160, 132}}}) {
        stage.orientation = static_cast<Orientation>(c.orientation);
        stage.contents = {decoy};
        ProgressHUD::show("x");
        EXPECT_EQ(center(), c.without) << c.orientation;
        stage.contents = {decoy, other, later};
        ProgressHUD::show("x");
        EXPECT_EQ(center(), c.with) << c.orientation;
    }
}

TEST_F(ProgressHUDTest, TheBoxFollowsNotifications) {
    ProgressHUD::show("x");
    // What the windows hold does not count once a notification tells.
    stage.contents = {{"UITextEffectsWindow", {{"UIKeyboard", 99}}}};
    const Rect keyboard{{0, 264}, {162, 216}};
    struct Case {
        OverlayNotification notification;
        int orientation;
        Point center;
    };
    for (const Case& c :
         {Case{{UIKeyboardWillShowNotification, 0.25, keyboard}, 1, {160, 132}},
          Case{{UIKeyboardDidShowNotification, 0.3, keyboard}, 2, {160, 348}},
          Case{{UIKeyboardDidShowNotification, 0.3, keyboard}, 4, {79, 240}},
          Case{{UIKeyboardWillHideNotification, 0.4, keyboard}, 1, {160, 240}},
          Case{{UIKeyboardDidHideNotification, 0.5, keyboard}, 1, {160, 240}},
          Case{{UIKeyboardWillShowNotification, 0.1, keyboard}, 3, {241, 240}},
          Case{{UIApplicationDidChangeStatusBarOrientationNotification}, 3, {160, 240}}}) {
        stage.orientation = static_cast<Orientation>(c.orientation);
        stage.notify(c.notification);
        EXPECT_EQ(stage.animations.back(),
                  std::make_pair(PieceChange{.center = c.center},
                                 Animation{c.notification.animationDuration, false, true}));
    }
}

TEST_F(ProgressHUDTest, PopsInAndShrinksAway) {
    ProgressHUD::dismiss();
    EXPECT_TRUE(stage.animations.empty()) << "nothing to hide";
    ProgressHUD::show("x");
    EXPECT_EQ(stage.animations.back(),
              std::make_pair(PieceChange{.alpha = 1, .scale = 1}, Animation{0.15, false, true}));
    ProgressHUD::dismiss();
    EXPECT_EQ(stage.animations.back(),
              std::make_pair(PieceChange{.alpha = 0, .scale = 0.7}, Animation{0.15, true, true}));

    ProgressHUD::show("too late");
    EXPECT_EQ(count("make hud"), 1);
    EXPECT_EQ(stage.pieces[Piece::Hud].alpha, 0) << "goes on shrinking";
    EXPECT_EQ(ProgressHUD::shared()->alpha(), 1);
    stage.advance(0.15);
    EXPECT_FALSE(stage.shows());
    EXPECT_EQ(ProgressHUD::shared()->alpha(), 0);

    ProgressHUD::show("afresh");
    EXPECT_EQ(count("make hud"), 2);
    EXPECT_EQ(stage.handlers.size(), 5U);
    EXPECT_EQ(stage.pieces[Piece::Hud].scale, 1);
}

TEST_F(ProgressHUDTest, HidesItselfInTheTimeItTakesToRead) {
    struct Case {
        std::optional<std::string> message;
        double seconds;
    };
    for (const Case& c :
         {Case{std::string(25, 'x'), 1.5}, Case{std::string(50, 'x'), 2.5}, Case{"", 0.5},
          Case{std::nullopt, 0.5}, Case{"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", 0.66}}) {
        ProgressHUD::showSuccess(c.message);
        EXPECT_DOUBLE_EQ(stage.sleeps.back(), c.seconds);
        stage.advance(c.seconds - 0.01);
        EXPECT_EQ(stage.pieces.at(Piece::Hud).alpha, 1);
        stage.advance(0.01);
        EXPECT_EQ(stage.pieces.at(Piece::Hud).alpha, 0);
        stage.advance(0.15);
        EXPECT_FALSE(stage.shows());
    }
}

TEST_F(ProgressHUDTest, AnOlderTimedHideHidesANewerMessage) {
    ProgressHUD::showSuccess("12345");
    stage.advance(0.6);
    ProgressHUD::show("newer, and meant to stay");
    stage.advance(0.1);
    stage.advance(0.15);
    EXPECT_FALSE(stage.shows());

    stage.holdThreads = true;
    ProgressHUD::showError("short");
    ProgressHUD::show(std::string(100, 'x'));
    stage.letThreadsGo();
    EXPECT_DOUBLE_EQ(stage.sleeps.back(), 4.5) << "the text as it stands when the wait begins";

    ProgressHUD::showError("gone before its thread begins");
    ProgressHUD::dismiss();
    stage.advance(0.15);
    stage.letThreadsGo();
    EXPECT_DOUBLE_EQ(stage.sleeps.back(), 0.5);
}

TEST_F(ProgressHUDTest, FallsBackToTheKeyWindow) {
    stage.delegate = std::nullopt;
    ProgressHUD::show("x");
    EXPECT_EQ(count("add hud to window 8"), 1);
    EXPECT_EQ(ProgressHUD::shared()->frame(), stage.screen);
}

TEST_F(ProgressHUDTest, AfterWithdrawalNothingTouchesTheStage) {
    ProgressHUD::showSuccess("sleeping");
    ProgressHUD::dismiss();
    const auto handlers = stage.handlers;
    ProgressHUD::withdrawStage();
    EXPECT_FALSE(stage.shows());
    stage.log.clear();
    stage.advance(10);
    for (const auto& [name, handler] : handlers)
        handler({name});
    ProgressHUD::show("x");
    ProgressHUD::showError("x", false);
    ProgressHUD::dismiss();
    ProgressHUD::withdrawStage();
    EXPECT_EQ(ProgressHUD::shared(), nullptr);
    EXPECT_TRUE(stage.log.empty());

    FakeStage next;
    ProgressHUD::useStage(next);
    EXPECT_EQ(ProgressHUD::shared()->alpha(), 0);
    ProgressHUD::show("x");
    EXPECT_TRUE(next.shows());
    ProgressHUD::useStage(stage);
    EXPECT_FALSE(next.shows());
}

/// A stage whose threads are real and sleep longer than any test.
struct ThreadedStage : FakeStage {
    void runOnNewThread(Work work) override { EXPECT_TRUE(workers.start(std::move(work))); }
    bool sleep(double seconds) override { return workers.sleep(3600 * seconds); }
    void runOnMainThread(Work) override { ADD_FAILURE() << "a cancelled thread must not go on"; }
    void cancelThreads() override { workers.cancelAll(); }

    TimedWorkers workers;
};

TEST(ProgressHUDThreads, WithdrawalEndsSleepingHidesAtOnce) {
    ThreadedStage stage;
    ProgressHUD::useStage(stage);
    for (int length = 0; length < 16; ++length)
        ProgressHUD::showSuccess(std::string(static_cast<std::size_t>(length), 'x'));
    ProgressHUD::withdrawStage();
    EXPECT_FALSE(stage.shows());
}

} // namespace dubrix
