#include "screens/prefs/PrefsViewController.h"

#include "tests/screens/ScreenDevice.h"

namespace dubrix {

using Lines = std::vector<std::string>;

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
    /// A block that notes its name and what is presented when it runs.
    AlertBlock noting(const char* what) {
        return [this, what] { ran.push_back(what + (" over [" + title().toStdString() + "]")); };
    }

    std::unique_ptr<PrefsViewController> screen;
    Lines ran;
};

TEST_F(PrefsTest, LoadsFromTheSettings) {
    const struct {
        const char* settings;
        const char* shown;
    } cases[] = {
        {"{}", "[ ] [] #ff000000 0 1 0 1 1 44 44 0 44 0 0 44 44"},
        {"(a, b)", "[ ] [] #ff000000 0 1 0 1 1 44 44 0 44 0 0 44 44"},
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
    const struct {
        void (PrefsViewController::*change)(bool);
        bool on;
        const char* said;
        const char* stored;
        const char* shown;
    } cases[] = {
        {&PrefsViewController::nameSwitchChanged, true, "Custom Name ON",
         "1 - For Key customNameToggle", " 1 0 0 1 1 44 44 44 44 0 0 44 44"},
        {&PrefsViewController::colorSwitchChanged, true, "Custom Color ON",
         "1 - For Key customColorToggle", " 1 0 1 0 0 44 44 44 44 44 16 44 44"},
        {&PrefsViewController::nameSwitchChanged, false, "Custom Name OFF",
         "0 - For Key customNameToggle", " 0 1 1 0 0 44 44 0 44 44 16 44 44"},
        {&PrefsViewController::colorSwitchChanged, false, "Custom Color OFF",
         "0 - For Key customColorToggle", " 0 1 0 1 1 44 44 0 44 0 0 44 44"},
    };
    for (const auto& [change, on, said, stored, expected] : cases) {
        log.lines.clear();
        (screen.get()->*change)(on);
        EXPECT_EQ(log.lines, (Lines{said, std::string("Adding Object: ") + stored,
                                    "Wrote to file successfully"}));
        EXPECT_EQ(shown(), std::string("[ ] [] #ff000000") + expected);
    }
}

TEST_F(PrefsTest, RowsStartTheirActions) {
    load("{}");
    int selected = -1; // when something is presented
    QObject::connect(&modals, &ModalStack::occupiedChanged, screen.get(), [&] {
        if (modals.occupied())
            selected = screen->prefTable.selectedSection();
    });
    for (const auto& [section, row] : {std::pair{1, 0}, {2, 0}, {2, 2}, {0, 1}}) {
        log.lines.clear();
        screen->tableViewDidSelectRowAtIndexPath(section, row);
        EXPECT_EQ(log.lines, Lines{"\nindexPath.row " + std::to_string(row) + " \nindex.section " +
                                   std::to_string(section) + " \n"});
        EXPECT_FALSE(modals.occupied()) << section;
    }
    for (const auto& [section, message] : {std::pair{3, "Please select an app from the list"},
                                           {4, "The selected app is not installed"}}) {
        screen->tableViewDidSelectRowAtIndexPath(section, 0);
        ASSERT_EQ(title(), "Dubrix");
        EXPECT_EQ(alert()->message(), message);
        EXPECT_EQ(selected, section) << "deselected when the action is over";
        EXPECT_EQ(screen->prefTable.selectedSection(), -1);
        EXPECT_FALSE(screen->prefTable.selectionAnimated());
        press("Ok");
    }
    for (const auto& [section, row] : {std::pair{0, 0}, {2, 1}}) {
        screen->tableViewDidSelectRowAtIndexPath(section, row);
        ASSERT_TRUE(modals.occupied());
        EXPECT_EQ(screen->prefTable.selectedRow(), row) << "below the sheet";
        modals.topmost()->dismissBySystem();
        EXPECT_EQ(screen->prefTable.selectedRow(), -1);
        EXPECT_TRUE(screen->prefTable.selectionAnimated());
    }
}

TEST_F(PrefsTest, EveryButtonRunsItsBlockOnceAfterTheDismissal) {
    load("{}");
    const auto one = [&] { screen->showSimpleAlertWithTitle("T", "M\nM", "Ok"); };
    const auto two = [&] {
        screen->show2ButtonAlertWithTitle("T", "M\nM", "Yes", "No", noting("no"), noting("yes"));
    };
    const auto three = [&] {
        screen->show3ButtonAlertWithTitle("T", "M\nM", "A", "B", "C", noting("a"), noting("b"));
    };
    const struct {
        std::function<void()> show;
        int pressed;
        Lines ran;
    } cases[] = {{one, 0, {}},
                 {two, 0, {"no over []"}},
                 {two, 1, {"yes over []"}},
                 {three, 0, {"a over []"}},
                 {three, 1, {"b over []"}},
                 {three, 2, {"b over []"}}};
    for (const auto& [show, pressed, expected] : cases) {
        ran.clear();
        show();
        ASSERT_EQ(title() + alert()->message(), "TM\nM");
        const QPointer<AlertController> shown = alert();
        for (const int each : {-1, static_cast<int>(shown->buttons().size()), pressed, 0})
            shown->press(each); // only the first that is there counts
        EXPECT_EQ(ran, Lines()) << "not within the press";
        QCoreApplication::processEvents();
        EXPECT_EQ(alert(), nullptr);
        EXPECT_EQ(ran, expected);
    }
    screen->showSimpleAlertWithTitle({}, {}, "Ok"); // a name may be absent
    EXPECT_EQ(alert()->title() + alert()->message(), "");
}

} // namespace dubrix
