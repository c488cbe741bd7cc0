#include "tests/screens/PrefsScreenTest.h"

namespace dubrix {

class PrefsAlertsTest : public PrefsScreenTest {
protected:
    PrefsAlertsTest() {
        chooseSource("s");
        load();
    }
    /// A block that notes its name and what is presented when it runs.
    AlertBlock noting(const char* what) {
        return
            [this, what] { journal.push_back(what + (" over [" + title().toStdString() + "]")); };
    }
};

TEST_F(PrefsAlertsTest, EveryButtonRunsItsBlockOnceAfterTheDismissal) {
    const auto one = [&] { screen->showSimpleAlertWithTitle("T", "M\nM", "Ok"); };
    const auto two = [&] {
        screen->show2ButtonAlertWithTitle("T", "M\nM", "Yes", "No", noting("no"), noting("yes"));
    };
    const auto three = [&] {
        screen->show3ButtonAlertWithTitle("T", "M\nM", "A", "B", "C", noting("a"), noting("b"));
    };
    const struct {
        std::function<void()> show;
        QStringList buttons;
        int pressed;
        Journal ran;
    } cases[] = {
        {one, {"Ok"}, 0, {}},
        {two, {"No", "Yes"}, 0, {"no over []"}},
        {two, {"No", "Yes"}, 1, {"yes over []"}},
        {three, {"A", "B", "C"}, 0, {"a over []"}},
        {three, {"A", "B", "C"}, 1, {"b over []"}},
        {three, {"A", "B", "C"}, 2, {"b over []"}},
    };
    for (const auto& scene : cases) {
        journal.clear();
        scene.show();
        ASSERT_EQ(title(), "T");
        EXPECT_EQ(alert()->message(), "M\nM");
        EXPECT_EQ(alert()->buttons(), scene.buttons);
        EXPECT_TRUE(alert()->spinnerFrame().isEmpty());
        const QPointer<AlertController> shown = alert();
        for (const int nothing : {-1, 3})
            shown->press(nothing);
        shown->press(scene.pressed);
        shown->press((scene.pressed + 1) % static_cast<int>(scene.buttons.size()));
        EXPECT_EQ(journal, Journal()) << "not within the press";
        QCoreApplication::processEvents();
        EXPECT_EQ(alert(), nullptr);
        if (shown) // it fades
            shown->press(scene.pressed);
        QCoreApplication::processEvents();
        EXPECT_EQ(journal, scene.ran);
    }
    screen->showSimpleAlertWithTitle({}, {}, "Ok"); // a name may be absent
    EXPECT_EQ(alert()->title() + alert()->message(), "");
    press("Ok");
}

TEST_F(PrefsAlertsTest, AHundredAnswersNeverLoseAnAlert) {
    catalogue.known["s"] = {"Example", {}, "2"};
    for (int number = 1; number <= 100; ++number)
        catalogue.known["s" + std::to_string(number)] = {"Copy", {}, "1"};
    screen->DuplicateStartAt(1);
    for (int number = 1; number <= 100; ++number) {
        ASSERT_TRUE(alert() != nullptr) << number;
        EXPECT_TRUE(alert()->message().startsWith(
            QStringLiteral("An update for Example %1 is available.").arg(number)));
        press(number % 2 == 0 ? "New duplicate" : "Cancel");
    }
    EXPECT_EQ(alert(), nullptr);
    // The dismissed ones go away by themselves.
    while (modals.rowCount() > 0)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

TEST_F(PrefsAlertsTest, TheProgressAlertFollowsTheConfirmation) {
    catalogue.known["s"] = {"Example", {}, "2"};
    screen->viewDidLayout(320, 480);
    std::vector<QRectF> spinners;
    commands.act = [&](const std::string&) {
        // Long enough for the question to have gone meanwhile.
        while (spinners.empty() && modals.rowCount() > 1)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        ASSERT_EQ(title(), "Dubrix");
        EXPECT_EQ(alert()->message(), "Cloning Example 1\nPlease wait...\n\n");
        EXPECT_EQ(alert()->buttons(), QStringList());
        spinners.push_back(alert()->spinnerFrame());
    };
    screen->tableViewDidSelectRowAtIndexPath(3, 0);
    ASSERT_EQ(title(), "Example");
    press("Duplicate");
    EXPECT_EQ(spinners, std::vector<QRectF>(3, {150, 330, 20, 20}));
    EXPECT_EQ(alert(), nullptr) << "dismissed with the end of the run";
    EXPECT_EQ(stage.text, "Failed to duplicate Example.");
}

} // namespace dubrix
