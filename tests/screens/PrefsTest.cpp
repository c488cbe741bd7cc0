#include "screens/prefs/PrefsViewController.h"

#include "screens/alerts/AlertView.h"
#include "tests/screens/ScreenDevice.h"

#include <QTest>

namespace dubrix {

class PrefsTest : public ScreenDevice {
protected:
    /// Loads a new screen from these settings.
    void load(const std::string& settings) {
        choose(settings);
        screen = std::make_unique<PrefsViewController>(platform, notifications);
        screen->setModalStack(&modals);
        screen->loadViewIfNeeded();
        log.lines.clear();
    }
    /// What is drawn: name label, field, colour; each switch, whether its cells are hidden, and the
    /// height of its rows.
    std::string shown() const {
        std::string text = "[" + screen->appNameLabel.text().toStdString() + "] [" +
                           screen->textField.text().toStdString() + "] " +
                           screen->colorView.backgroundColor().name(QColor::HexArgb).toStdString();
        for (const bool flag : {screen->customNameSwitch.on(), screen->textfieldCell.hidden(),
                                screen->customColorSwitch.on(), screen->colorCell.hidden(),
                                screen->colorView.hidden()})
            text += flag ? " 1" : " 0";
        for (int section = 0; section < screen->numberOfSectionsInTableView(); ++section)
            for (int row = 0; row < screen->tableViewNumberOfRowsInSection(section); ++row)
                text += " " + std::to_string(static_cast<int>(
                                  screen->tableViewHeightForRowAtIndexPath(section, row)));
        return text;
    }

    std::unique_ptr<PrefsViewController> screen;
};

TEST_F(PrefsTest, LoadsFromTheSettings) {
    const std::pair<const char*, const char*> cases[] = {
        {"{}", "[ ] [] #ff000000 0 1 0 1 1 44 44 0 44 0 0 44 44"},
        {"{appName = \"\"; customText = Work; customNameToggle = 1; Green = 1;}",
         "[] [Work] #ff00ff00 1 0 0 1 1 44 44 44 44 0 0 44 44"},
        {"{appName = \"My App\"; customColorToggle = 1; Red = \"0.2\"; Blue = 1;}",
         "[My App] [] #ff3300ff 0 1 1 0 0 44 44 0 44 44 16 44 44"},
    };
    for (const auto& [settings, expected] : cases) {
        load(settings);
        EXPECT_EQ(shown(), expected);
    }
    EXPECT_EQ(screen->prefTable.contentInset(), QMarginsF(0, 0, 0, 30));
    EXPECT_EQ(screen->textField.returnKey(), TextField::ReturnKey::Done);
    for (const int nowhere : {-1, 5})
        EXPECT_EQ(screen->tableViewNumberOfRowsInSection(nowhere), 0);
}

TEST_F(PrefsTest, SwitchesShowTheirRowsAskForAReloadAndThenStore) {
    load("{}");
    int reloads = 0;
    log.heard = [&](const std::string& line) {
        if (!line.starts_with("Adding Object"))
            return;
        EXPECT_EQ(screen->prefTable.reloads(), reloads) << "the rows are asked what is stored";
        QCoreApplication::sendPostedEvents(&screen->prefTable);
        EXPECT_EQ(screen->prefTable.reloads(), ++reloads) << "it was asked for before";
    };
    using Change = void (PrefsViewController::*)(bool);
    const std::tuple<Change, bool, const char*, const char*> cases[] = {
        {&PrefsViewController::nameSwitchChanged, true, "Custom Name ON",
         " 1 0 0 1 1 44 44 44 44 0 0 44 44"},
        {&PrefsViewController::colorSwitchChanged, true, "Custom Color ON",
         " 1 0 1 0 0 44 44 44 44 44 16 44 44"},
        {&PrefsViewController::nameSwitchChanged, false, "Custom Name OFF",
         " 0 1 1 0 0 44 44 0 44 44 16 44 44"},
        {&PrefsViewController::colorSwitchChanged, false, "Custom Color OFF",
         " 0 1 0 1 1 44 44 0 44 0 0 44 44"}};
    for (const auto& [change, on, said, expected] : cases) {
        log.lines.clear();
        (screen.get()->*change)(on);
        EXPECT_EQ(log.lines.at(0), said);
        EXPECT_EQ(shown(), std::string("[ ] [] #ff000000") + expected);
    }
    EXPECT_EQ(reloads, 4);
}

TEST_F(PrefsTest, RowsStartTheirActions) {
    load("{}");
    const TableView& table = screen->prefTable;
    int selected = -1; // when something is presented
    QObject::connect(&modals, &ModalStack::occupiedChanged, screen.get(),
                     [&] { selected = modals.occupied() ? table.selectedSection() : -1; });
    for (const auto& [section, row, expected] : {std::tuple{1, 0, ""},
                                                 {2, 0, ""},
                                                 {2, 2, ""},
                                                 {0, 1, ""},
                                                 {3, 0, "Please select an app from the list"},
                                                 {4, 0, "The selected app is not installed"},
                                                 {0, 0, "a sheet"},
                                                 {2, 1, "a sheet"}}) {
        SCOPED_TRACE(std::to_string(section) + " " + std::to_string(row));
        screen->tableViewDidSelectRowAtIndexPath(section, row);
        const bool covered = modals.occupied() && !alert();
        EXPECT_EQ(alert() ? alert()->message() : covered ? "a sheet" : "", expected);
        if (!modals.occupied())
            continue;
        EXPECT_EQ(selected, section) << "deselected when the action is over";
        EXPECT_EQ(table.selectedRow(), covered ? row : -1);
        modals.topmost()->dismissBySystem();
        EXPECT_EQ(table.selectedRow(), -1);
        EXPECT_EQ(table.selectionAnimated(), covered);
    }
}

TEST_F(PrefsTest, AnAlertViewReportsEachShowingOnceAndLivesAsLong) {
    load("{}");
    std::vector<ButtonIndex> reported;
    auto view = AlertView::make(*screen, "Title", "Message");
    const std::weak_ptr watched = view;
    view->addButtonWithTitle("Later");
    view->setCancelButtonIndex(view->addButtonWithTitle("Cancel"));
    auto token = std::make_shared<int>(); // held by the completion block and its copies alone
    INAlertWrapper::CompletionBlock completion = [&, token](AlertView& told, ButtonIndex index) {
        EXPECT_EQ(&told, watched.lock().get());
        reported.push_back(index);
    };
    const std::weak_ptr used = std::exchange(token, nullptr);

    view->showWithCompletion([&](AlertView& told, ButtonIndex index) {
        reported.push_back(10 + index);
        told.showWithCompletion(completion); // again, by its own completion
    });
    ASSERT_EQ(title(), "Title");
    EXPECT_TRUE(modals.data(modals.index(0), ModalStack::AnimatedRole).toBool());
    view->show(); // already
    EXPECT_EQ(modals.rowCount(), 1);
    press("Later");
    EXPECT_TRUE(alert());
    view->cancelBySystem();
    view->cancelBySystem();
    EXPECT_FALSE(alert());
    view->show();
    alert()->press(0);
    view->cancelBySystem(); // between the press and now
    QCoreApplication::processEvents();
    view->show();
    view.reset();
    completion = nullptr;
    EXPECT_FALSE(watched.expired());
    press("Later");
    EXPECT_FALSE(modals.occupied());
    EXPECT_EQ(reported, (std::vector<ButtonIndex>{10, 1, 1, 0}));
    EXPECT_TRUE(QTest::qWaitFor([&] {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return watched.expired() && used.expired();
    })) << "and no longer";
}

} // namespace dubrix
