#include "overlays/ProgressHUD.h"
#include "overlays/TimedWorkers.h"
#include "tests/overlays/FakeStage.h"

#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <pthread.h>

namespace dubrix {

using enum OverlayNotification::Name;

using Text = std::optional<std::string>;

struct ProgressHUDTest : ::testing::Test {
    ProgressHUDTest() { ProgressHUD::useStage(stage); }
    ~ProgressHUDTest() override { ProgressHUD::withdrawStage(); }

    const PieceChange& state(Piece piece) const { return stage.pieces.at(piece); }
    FakeStage::Look look(Piece piece) const { return stage.pieces.at(piece).look; }
    FakeStage::Parent parent(Piece piece) const { return stage.pieces.at(piece).parent; }
    void expectAnimated(const PieceChange& to, const Animation& how) const {
        EXPECT_EQ(stage.animations.back().to, to);
        EXPECT_EQ(stage.animations.back().how, how);
    }

    FakeStage stage;
};

TEST_F(ProgressHUDTest, EachPieceLooksAsItShould) {
    using Look = FakeStage::Look;
    ProgressHUD::show("x", false);
    EXPECT_EQ(look(Piece::Background),
              Look(BackgroundAppearance{{{0, 20}, {320, 467}}, {0, 0, 0, 0.2}}));
    EXPECT_EQ(look(Piece::Hud), Look(HudAppearance{{}, true, {0, 0, 0, 0.1}, 10, true}));
    EXPECT_EQ(look(Piece::Spinner),
              Look(SpinnerAppearance{
                  SpinnerStyle::WhiteLarge, {185 / 255.0, 220 / 255.0, 47 / 255.0, 1}, true}));
    EXPECT_EQ(look(Piece::Image), Look(ImageAppearance{{{0, 0}, {28, 28}}}));
    EXPECT_EQ(look(Piece::Label), Look(LabelAppearance{{},
                                                       {16, true},
                                                       {0, 0, 0, 1},
                                                       {},
                                                       TextAlignment::Center,
                                                       BaselineAdjustment::AlignCenters,
                                                       0}));
    EXPECT_EQ(stage.measuredBy, std::pair(Font(16, true), Size(200, 300)));
    for (const Piece piece : {Piece::Spinner, Piece::Image, Piece::Label})
        EXPECT_EQ(parent(piece), FakeStage::Parent(Piece::Hud));
}

TEST_F(ProgressHUDTest, EachShowSaysItsOwn) {
    const Text none, success = "ProgressHUD.bundle/progresshud-success.png",
                     error = "ProgressHUD.bundle/progresshud-error.png";
    const struct {
        std::function<void()> show;
        bool interaction;
        Text image;
    } cases[] = {
        {[] { ProgressHUD::show("m"); }, true, none},
        {[] { ProgressHUD::show("m", true); }, true, none},
        {[] { ProgressHUD::show("m", false); }, false, none},
        {[] { ProgressHUD::showSuccess("m"); }, true, success},
        {[] { ProgressHUD::showSuccess("m", false); }, false, success},
        {[] { ProgressHUD::showError("m"); }, true, error},
        {[] { ProgressHUD::showError("m", false); }, false, error},
    };
    for (const auto& [show, interaction, image] : cases) {
        SCOPED_TRACE(image.value_or("show") + (interaction ? "" : ", covering"));
        show();
        EXPECT_EQ(stage.text, "m");
        EXPECT_EQ(stage.image, image);
        EXPECT_EQ(state(Piece::Image).hidden, !image);
        EXPECT_EQ(stage.spinning, !image);
        EXPECT_EQ(ProgressHUD::shared()->interaction(), interaction);
        EXPECT_EQ(stage.pieces.contains(Piece::Background), !interaction);
        EXPECT_EQ(parent(interaction ? Piece::Hud : Piece::Background),
                  FakeStage::Parent(WindowId{7}));
        EXPECT_EQ(parent(Piece::Hud) == FakeStage::Parent(Piece::Background), !interaction);
        EXPECT_EQ(stage.handlers.size(), 5U);
        stage.advance(60);
        stage.advance(0.15);
        EXPECT_EQ(stage.shows(), !image) << "what has an image hides itself";
        ProgressHUD::dismiss();
        stage.advance(0.14);
        EXPECT_EQ(stage.shows(), !image);
        stage.advance(0.01);
        EXPECT_TRUE(stage.pieces.empty() && stage.handlers.empty());
    }
}

TEST_F(ProgressHUDTest, TheBoxFitsItsText) {
    const std::tuple<Text, double, Size, Rect, Point> cases[] = {
        {"", 0, {100, 115}, {{0, 66}, {100, 35}}, {50, 36}},
        {"x", 75.9, {100, 115}, {{0, 66}, {100, 35}}, {50, 36}},
        {"x", 76, {100, 115}, {{12, 66}, {76, 35}}, {50, 36}},
        {"x", 150, {174, 115}, {{12, 66}, {150, 35}}, {87, 36}},
        {std::nullopt, 150, {100, 100}, {}, {50, 50}}};
    for (const auto& [message, textWidth, box, label, mark] : cases) {
        stage.measured = {textWidth, 35};
        ProgressHUD::show(message);
        EXPECT_EQ(state(Piece::Hud).bounds, box) << textWidth;
        EXPECT_EQ(state(Piece::Label).frame, label) << textWidth;
        EXPECT_EQ(state(Piece::Label).hidden, !message);
        EXPECT_EQ(state(Piece::Spinner).center, mark) << textWidth;
        EXPECT_EQ(state(Piece::Image).center, mark) << textWidth;
    }
}

TEST_F(ProgressHUDTest, TheBoxKeepsClearOfTheKeyboard) {
    const WindowContents decoy{"UIWindow", {{"UIKeyboard", 50}}};
    const WindowContents other{"UITextEffectsWindow",
                               {{"UIView", 60}, {"UIPeripheralHostView", 216}}};
    const WindowContents later{"UITextEffectsWindow", {{"UIKeyboard", 70}}};
    for (const auto& [orientation, center] : {std::pair{1, Point{160, 132}},
                                              {2, {160, 348}},
                                              {3, {268, 240}},
                                              {4, {52, 240}},
                                              {0, {160, 132}},
                                              {9, {160, 132}}}) {
        stage.orientation = static_cast<Orientation>(orientation);
        stage.contents = {decoy};
        ProgressHUD::show("x");
        EXPECT_EQ(state(Piece::Hud).center, (Point{160, 240})) << orientation;
        stage.contents = {decoy, other, later};
        ProgressHUD::show("x");
        expectAnimated({.center = center}, {0, false, true});
    }
    stage.contents = {decoy, later};
    ProgressHUD::show("x");
    EXPECT_EQ(state(Piece::Hud).center, (Point{160, 205}));
}

TEST_F(ProgressHUDTest, TheBoxFollowsNotifications) {
    ProgressHUD::show("x");
    // What the windows hold does not count once a notification tells.
    stage.contents = {{"UITextEffectsWindow", {{"UIKeyboard", 99}}}};
    const Rect keyboard{{0, 264}, {162, 216}};
    for (const auto& [name, seconds, orientation, center] :
         {std::tuple{UIKeyboardWillShowNotification, 0.25, 1, Point{160, 132}},
          {UIKeyboardDidShowNotification, 0.3, 4, {79, 240}},
          {UIKeyboardWillHideNotification, 0.4, 1, {160, 240}},
          {UIKeyboardDidHideNotification, 0.5, 1, {160, 240}},
          {UIKeyboardWillShowNotification, 0.1, 3, {241, 240}},
          {UIApplicationDidChangeStatusBarOrientationNotification, 0, 3, {160, 240}}}) {
        stage.orientation = static_cast<Orientation>(orientation);
        stage.notify({name, seconds, keyboard});
        expectAnimated({.center = center}, {seconds, false, true});
    }
}

TEST_F(ProgressHUDTest, PopsInAndShrinksAway) {
    ProgressHUD::dismiss();
    EXPECT_TRUE(stage.animations.empty()) << "nothing to hide";
    ProgressHUD::show("x");
    EXPECT_EQ(stage.animations.back().from.alpha, 0);
    EXPECT_EQ(stage.animations.back().from.scale, 1.4);
    expectAnimated({.alpha = 1, .scale = 1}, {0.15, false, true});
    ProgressHUD::dismiss();
    expectAnimated({.alpha = 0, .scale = 0.7}, {0.15, true, true});

    ProgressHUD::show("too late");
    EXPECT_EQ(stage.text, "too late");
    EXPECT_EQ(state(Piece::Hud).alpha, 0) << "goes on shrinking";
    EXPECT_EQ(ProgressHUD::shared()->alpha(), 1);
    ProgressHUD::dismiss();
    EXPECT_NEAR(state(Piece::Hud).scale.value(), 0.49, 1e-9) << "hidden again";
    stage.advance(0.15);
    EXPECT_FALSE(stage.shows());
    EXPECT_EQ(ProgressHUD::shared()->alpha(), 0);
    ProgressHUD::show("afresh");
    EXPECT_EQ(state(Piece::Hud).scale, 1);
}

TEST_F(ProgressHUDTest, HidesItselfInTheTimeItTakesToRead) {
    const std::pair<Text, double> cases[] = {{std::string(25, 'x'), 1.5},
                                             {std::string(50, 'x'), 2.5},
                                             {"", 0.5},
                                             {std::nullopt, 0.5},
                                             {"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", 0.66}};
    for (const bool isReplaced : {false, true})
        for (const auto& [message, seconds] : cases) {
            ProgressHUD::showSuccess(isReplaced ? "short" : message);
            if (isReplaced) // before the wait begins, which the newer text then decides
                ProgressHUD::show(message);
            stage.advance(seconds - 0.01);
            EXPECT_EQ(state(Piece::Hud).alpha, 1) << seconds;
            stage.advance(0.01);
            EXPECT_EQ(state(Piece::Hud).alpha, 0) << seconds;
            stage.advance(0.15);
        }
    // An older message's hides a newer message.
    ProgressHUD::showSuccess("12345");
    stage.advance(0.6);
    ProgressHUD::show("newer, and meant to stay");
    stage.advance(0.1);
    stage.advance(0.15);
    EXPECT_FALSE(stage.shows());
}

TEST_F(ProgressHUDTest, AfterWithdrawalNothingTouchesTheStage) {
    ProgressHUD::showSuccess("sleeping");
    ProgressHUD::dismiss();
    const auto handlers = stage.handlers;
    ProgressHUD::withdrawStage();
    EXPECT_FALSE(stage.shows());
    stage.calls = 0;
    stage.advance(10);
    for (const auto& [name, handler] : handlers)
        handler({name});
    ProgressHUD::show("x");
    ProgressHUD::showError("x", false);
    ProgressHUD::dismiss();
    ProgressHUD::withdrawStage();
    EXPECT_EQ(ProgressHUD::shared(), nullptr);
    EXPECT_EQ(stage.calls, 0);

    FakeStage next;
    next.delegate = std::nullopt;
    ProgressHUD::useStage(next);
    EXPECT_EQ(ProgressHUD::shared()->alpha(), 0);
    EXPECT_EQ(ProgressHUD::shared()->frame(), next.screen);
    ProgressHUD::show("x");
    EXPECT_EQ(next.pieces.at(Piece::Hud).parent, FakeStage::Parent(WindowId{8}))
        << "the key window";
    ProgressHUD::useStage(stage);
    EXPECT_FALSE(next.shows());
}

TEST(TimedWorkers, WithoutAThreadNothingIsDone) {
    pthread_attr_t usual, endless;
    ASSERT_EQ(::pthread_getattr_default_np(&usual) + ::pthread_getattr_default_np(&endless), 0);
    ASSERT_EQ(::pthread_attr_setstacksize(&endless, std::size_t{1} << 50), 0);
    TimedWorkers workers;
    ASSERT_EQ(::pthread_setattr_default_np(&endless), 0);
    EXPECT_FALSE(workers.start([] { ADD_FAILURE() << "no system has room for that stack"; }));
    ASSERT_EQ(::pthread_setattr_default_np(&usual), 0);
    EXPECT_TRUE(workers.start([] {}));
}

TEST(TimedWorkers, CancellingWakesEverySleeperAndLetsNewOnesStart) {
    std::atomic<int> woken = 0;
    const auto held = std::make_shared<int>(0);
    {
        TimedWorkers workers;
        const auto startEight = [&] {
            for (int count = 0; count < 8; ++count)
                ASSERT_TRUE(workers.start([&, held] { woken += workers.sleep(3600) ? 100 : 1; }));
        };
        startEight();
        workers.cancelAll();
        EXPECT_EQ(woken, 8) << "all have ended when the call returns";
        startEight();
    }
    EXPECT_EQ(woken, 16) << "and with their owner";
    EXPECT_EQ(held.use_count(), 1);
}

TEST(TimedWorkers, WhoSleptItsTimeLeavesNothingBehind) {
    TimedWorkers workers;
    const auto mappings = [] {
        std::ifstream maps("/proc/self/maps");
        return std::count(std::istreambuf_iterator<char>(maps), {}, '\n');
    };
    const auto before = mappings();
    const auto begin = std::chrono::steady_clock::now();
    for (const double seconds : std::vector(400, 0.0001)) {
        std::promise<bool> slept;
        ASSERT_TRUE(workers.start([&] { slept.set_value(workers.sleep(seconds)); }));
        EXPECT_TRUE(slept.get_future().get());
    }
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(40));
    EXPECT_LT(mappings() - before, 400) << "each thread has a stack until it is joined";
}

} // namespace dubrix
