#include "tests/screens/PrefsScreenTest.h"
#include "tests/support/StoredText.h"

namespace dubrix {

class PrefsViewControllerTest : public PrefsScreenTest {
protected:
    /// What is drawn from the settings: name label, field, colour, switches, hidden rows.
    std::string shown() const {
        const auto flag = [](bool value) { return std::string(value ? " 1" : " 0"); };
        return "[" + screen->appNameLabel.text().toStdString() + "] [" +
               screen->textField.text().toStdString() + "] " +
               screen->colorView.backgroundColor().name(QColor::HexArgb).toStdString() +
               flag(screen->customNameSwitch.on()) + flag(screen->customColorSwitch.on()) +
               flag(screen->textfieldCell.hidden()) + flag(screen->colorCell.hidden()) +
               flag(screen->colorView.hidden());
    }
    std::string heights() const {
        std::string text;
        for (int section = 0; section < screen->numberOfSectionsInTableView(); ++section)
            for (int row = 0; row < screen->tableViewNumberOfRowsInSection(section); ++row)
                text += " " + std::to_string(static_cast<int>(
                                  screen->tableViewHeightForRowAtIndexPath(section, row)));
        return text;
    }
};

TEST_F(PrefsViewControllerTest, LoadsFromTheSettings) {
    const struct {
        const char* settings;
        const char* shown;
        const char* heights;
    } cases[] = {
        {"{}", "[ ] [] #ff000000 0 0 1 1 1", " 44 44 0 44 0 0 44 44"},
        {"{appName = \"My App\"; customText = Work; Green = 1;}",
         "[My App] [Work] #ff00ff00 0 0 1 1 1", " 44 44 0 44 0 0 44 44"},
        {"{appName = \"\"; customNameToggle = 1;}", "[] [] #ff000000 1 0 0 1 1",
         " 44 44 44 44 0 0 44 44"},
        {"{customColorToggle = 1; Red = \"0.2\"; Blue = 1;}", "[ ] [] #ff3300ff 0 1 1 0 0",
         " 44 44 0 44 44 16 44 44"},
        {"<plist", "[ ] [] #ff000000 0 0 1 1 1", " 44 44 0 44 0 0 44 44"},
        {"(a, b)", "[ ] [] #ff000000 0 0 1 1 1", " 44 44 0 44 0 0 44 44"},
    };
    for (const auto& [settings, expected, rows] : cases) {
        choose(settings);
        load();
        EXPECT_EQ(shown(), expected);
        EXPECT_EQ(heights(), rows);
    }
    EXPECT_EQ(screen->prefTable.contentInset(), QMarginsF(0, 0, 0, 30));
    EXPECT_EQ(screen->textField.returnKey(), TextField::ReturnKey::Done);
    EXPECT_EQ(
        screen->tableViewNumberOfRowsInSection(5) + screen->tableViewNumberOfRowsInSection(-1), 0);
}

TEST_F(PrefsViewControllerTest, SwitchesLogShowReloadAndStoreInThisOrder) {
    choose("{}");
    load();
    const auto note = [this](const char* what) {
        return [this, what] { journal.push_back(what); };
    };
    QObject::connect(&screen->textfieldCell, &TableViewCell::hiddenChanged, note("name row"));
    QObject::connect(&screen->colorCell, &TableViewCell::hiddenChanged, note("color row"));
    QObject::connect(&screen->colorView, &TableViewCell::hiddenChanged, note("color strip"));
    QObject::connect(&screen->prefTable, &TableView::reloaded, screen.get(),
                     [this] { journal.push_back("reload" + heights()); });
    const auto stored = [](const char* value, const char* key) {
        return Journal{std::string("log Adding Object: ") + value + " - For Key " + key,
                       "log Wrote to file successfully"};
    };
    const struct {
        void (PrefsViewController::*change)(bool);
        bool on;
        Journal first, stored;
        const char* heights;
    } cases[] = {
        {&PrefsViewController::nameSwitchChanged,
         true,
         {"log Custom Name ON", "name row"},
         stored("1", "customNameToggle"),
         " 44 44 44 44 0 0 44 44"},
        {&PrefsViewController::colorSwitchChanged,
         true,
         {"log Custom Color ON", "color row", "color strip"},
         stored("1", "customColorToggle"),
         " 44 44 44 44 44 16 44 44"},
        {&PrefsViewController::nameSwitchChanged,
         false,
         {"log Custom Name OFF", "name row"},
         stored("0", "customNameToggle"),
         " 44 44 0 44 44 16 44 44"},
        {&PrefsViewController::colorSwitchChanged,
         false,
         {"log Custom Color OFF", "color row", "color strip"},
         stored("0", "customColorToggle"),
         " 44 44 0 44 0 0 44 44"},
    };
    for (const auto& scene : cases) {
        (screen.get()->*scene.change)(scene.on);
        QCoreApplication::processEvents();
        Journal expected = scene.first;
        expected.insert(expected.end(), scene.stored.begin(), scene.stored.end());
        expected.push_back(std::string("reload") + scene.heights); // with what was stored
        EXPECT_EQ(journal, expected);
        journal.clear();
    }
}

TEST_F(PrefsViewControllerTest, TextIsStoredOnEveryChange) {
    choose("{customText = old;}");
    load();
    for (const char* const typed : {"W", " W\u00f6 ", ""}) {
        screen->textFieldChanged(QString::fromUtf8(typed));
        EXPECT_EQ(storedText(files, log, "customText"), typed);
    }
    int ended = 0;
    QObject::connect(&screen->textField, &TextField::editingEnded, [&ended] { ++ended; });
    EXPECT_FALSE(screen->textFieldShouldReturn());
    EXPECT_EQ(ended, 1);
    storeText(files, log, "appName", "Other");
    EXPECT_EQ(screen->appNameLabel.text(), " ");
    screen->setAppNameLabelText();
    EXPECT_EQ(screen->appNameLabel.text(), "Other");
}

TEST_F(PrefsViewControllerTest, RowsStartTheirActions) {
    choose("{}");
    load();
    const struct {
        int section, row;
        const char* title;
        const char* message;
    } cases[] = {
        {1, 0, "", ""},
        {2, 0, "", ""},
        {2, 2, "", ""},
        {3, 0, "Dubrix", "Please select an app from the list"},
        {4, 0, "Dubrix", "The selected app is not installed"},
    };
    for (const auto& [section, row, expectedTitle, message] : cases) {
        journal.clear();
        screen->tableViewDidSelectRowAtIndexPath(section, row);
        ASSERT_EQ(title(), expectedTitle) << section << ' ' << row;
        EXPECT_EQ(journal[0], "log \nindexPath.row " + std::to_string(row) + " \nindex.section " +
                                  std::to_string(section) + " \n");
        EXPECT_EQ(screen->prefTable.selectedSection(), alert() ? -1 : section);
        if (alert()) {
            EXPECT_EQ(alert()->message(), message);
            EXPECT_FALSE(screen->prefTable.selectionAnimated());
            press("Ok");
        }
    }
}

} // namespace dubrix
