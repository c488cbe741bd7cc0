#include "screens/about/QVWebViewController.h"
#include "screens/colors/ColorSpaces.h"
#include "screens/colors/ColorWords.h"
#include "screens/colors/QZColorPickerViewController.h"
#include "screens/containers/NavigationController.h"
#include "tests/screens/WholeWindow.h"

#include <QSet>

namespace dubrix {

/// The window under a pointer and a keyboard.
class HandTest : public WholeWindow {
protected:
    /// What the window system sends while a key is held.
    void repeat(int code) const {
        for (const QEvent::Type type : {QEvent::KeyRelease, QEvent::KeyPress}) {
            QKeyEvent event(type, code, Qt::NoModifier, QString(), true);
            QCoreApplication::sendEvent(window, &event);
        }
        QCoreApplication::processEvents();
    }
    void waitFor(const QString& application) const {
        ASSERT_TRUE(QTest::qWaitFor([&] { return find(application); }, 20'000))
            << modals.rowCount() << " modal; window active: " << window->isActive();
        ASSERT_TRUE(settled());
    }
    /// Where the Tab key leads, once round, by what screen readers call it.
    std::string stops() const {
        EXPECT_TRUE(settled());
        QStringList names;
        do {
            key(Qt::Key_Tab);
            names << focused();
        } while (names.size() < 20 && (names.size() == 1 || names.back() != names.front()));
        names.removeLast();
        names.sort();
        return names.join(u',').toStdString();
    }
};

TEST_F(HandTest, TabLeadsToAllOfEveryScreen) {
    const char* const tabs[] = {
        "About,Application,Color test,Custom color,Custom name,Done,Duplicate,Name,Select color,"
        "Settings,Update duplicates",
        "About,Changelog,Color test,Credits & FAQ,Donate,Follow @iQ7r2m,Instructions,Settings",
        "About,Color test,Select Color,Settings"};
    for (int tab = 0; tab < 3; ++tab) {
        root->setSelectedIndex(tab);
        EXPECT_EQ(stops(), tabs[tab]);
    }
    root->setSelectedIndex(0);
    for (const auto& [section, row, expected] : {std::tuple{0, 0, "Cancel,One,Search"},
                                                 {2, 1, "Cancel,Red 0, green 0, blue 0"},
                                                 {3, 0, "Cancel,Duplicate"}}) {
        prefs().tableViewDidSelectRowAtIndexPath(section, row);
        EXPECT_EQ(stops(), expected);
        modals.dismiss(*modals.topmost(), false);
        ASSERT_TRUE(alone());
    }
}

TEST_F(HandTest, WhatIsLeavingTakesNoPressAndLetsNoneThrough) {
    const QPoint places[] = {placeOf("Custom color"), placeOf("Duplicate"), placeOf("About")};
    click("Application");
    waitFor("One");
    Element* const row = find("One");
    click("One");
    ASSERT_TRUE(QTest::qWaitFor([this] { return !modals.topmost(); }));
    ASSERT_EQ(modals.rowCount(), 1) << "still leaving";
    EXPECT_FALSE(find("One"));
    const std::size_t lines = log.lines.size();
    for (const QPoint& place : places)
        click(place);
    press(row);
    EXPECT_EQ(log.lines.size(), lines) << log.lines.back();
    EXPECT_EQ(root->selectedIndex(), 0);
    ASSERT_TRUE(settled());
    click("Custom color");
    EXPECT_EQ(log.lines.at(lines), "Custom Color OFF");
}

TEST_F(HandTest, ATapOnATabIsNoTapOnTheRowUnderItAndADragScrolls) {
    window->resize(300, 360);
    QCoreApplication::processEvents();
    const std::size_t lines = log.lines.size();
    const QPoint start = placeOf("Custom name");
    QTest::mousePress(window, Qt::LeftButton, Qt::NoModifier, start);
    for (int step = 1; step <= 12; ++step)
        QTest::mouseMove(window, start - QPoint(0, 10 * step), 5);
    QTest::mouseRelease(window, Qt::LeftButton, Qt::NoModifier, start - QPoint(0, 120));
    EXPECT_LT(placeOf("Custom name").y(), start.y() - 60);
    click("About");
    EXPECT_EQ(log.lines.size(), lines) << log.lines.back();
    EXPECT_EQ(root->selectedIndex(), 1);
    EXPECT_FALSE(modals.topmost());
}

TEST_F(HandTest, AHeldReturnOpensAndAnswersNothing) {
    for (const char* row : {"Application", "Select color", "Duplicate"}) {
        itemOf(row)->forceActiveFocus();
        QTest::keyPress(window, Qt::Key_Return);
        const ViewController* const opened = modals.topmost();
        ASSERT_TRUE(opened) << row;
        ASSERT_TRUE(settled());
        EXPECT_NE(focused(), "") << row;
        for (int again = 0; again < 5; ++again)
            repeat(Qt::Key_Return);
        if (row == std::string("Application")) {
            QTest::keyClick(window, 'o'); // to the search field
            repeat(Qt::Key_Return);
            key(Qt::Key_Escape);
        }
        EXPECT_EQ(modals.topmost(), opened) << "nobody answered " << row;
        repeat(Qt::Key_Escape);
        QTest::keyRelease(window, Qt::Key_Return);
        key(Qt::Key_Escape);
        EXPECT_TRUE(alone()) << row;
    }
    itemOf("Duplicate")->forceActiveFocus();
    key(Qt::Key_Enter); // the keypad's
    EXPECT_TRUE(modals.topmost());
}

TEST_F(HandTest, AlertsAreAnsweredOnceByEveryButtonAndByKeys) {
    std::string ran;
    const auto noting = [&](const char* what) {
        return [&, what] { ran += what + std::string(modals.occupied() ? " too early " : " "); };
    };
    const std::function<void()> two = [&] {
        prefs().show2ButtonAlertWithTitle("T", "M", "Yes", "No", noting("no"), noting("yes"));
    };
    const std::function<void()> three = [&] {
        prefs().show3ButtonAlertWithTitle("T", "M", "A", "B", "C", noting("a"), noting("b"));
    };
    const auto answered = [&] {
        QCoreApplication::processEvents();
        return !modals.topmost();
    };
    for (const auto& [show, button] :
         {std::pair{two, "No"}, {two, "Yes"}, {three, "A"}, {three, "B"}, {three, "C"}}) {
        const std::string before = ran;
        show();
        AlertController& shown = *alert();
        for (const auto nowhere : {qsizetype{-1}, shown.buttons().size()})
            shown.press(static_cast<int>(nowhere));
        press(find(button));
        shown.press(0); // too late
        EXPECT_EQ(ran, before) << "not within the press";
        EXPECT_TRUE(answered());
    }
    EXPECT_EQ(std::exchange(ran, {}), "no yes a b b ");

    two();
    EXPECT_EQ(focused(), "Yes");
    EXPECT_LT(placeOf("No").x(), placeOf("Yes").x()) << "what cancels is at the left";
    key(Qt::Key_Left);
    EXPECT_EQ(focused(), "No");
    key(Qt::Key_Escape);
    EXPECT_TRUE(answered());
    three();
    key(Qt::Key_Escape);
    EXPECT_FALSE(answered());
    EXPECT_TRUE(placeOf("A").y() < placeOf("B").y() && placeOf("B").y() < placeOf("C").y());
    for (const char* there : {"A", "B", "C", "A"}) {
        EXPECT_EQ(focused(), there);
        key(Qt::Key_Down);
    }
    key(Qt::Key_Up);
    key(Qt::Key_Return);
    EXPECT_TRUE(answered());
    prefs().showSimpleAlertWithTitle({}, {}, "Ok"); // a name may be absent
    key(Qt::Key_Escape);
    EXPECT_FALSE(answered());
    EXPECT_EQ(ran, "no a ");
}

TEST_F(HandTest, ThePickerTakesKeysTheMomentItOpens) {
    for (int number = 10; number < 60; ++number)
        install("com.example.n" + std::to_string(number), "Number " + std::to_string(number));
    DXShared(files, log).addKey("bundleID", PropertyList::string("com.example.n40"));
    click("Application");
    waitFor("Number 40");
    EXPECT_TRUE(find("Number 40")->state().checked);
    EXPECT_LT(placeOf("Number 40").y(), window->height());
    EXPECT_GT(placeOf("Number 40").y(), 0);
    const struct {
        int key;
        const char* there;
    } steps[] = {{0, "Number 40"},       {Qt::Key_Down, "Number 41"}, {Qt::Key_Home, "Number 10"},
                 {Qt::Key_Up, "Search"}, {Qt::Key_Tab, "Number 10"},  {Qt::Key_End, "One"},
                 {Qt::Key_X, "Search"},  {Qt::Key_Q, "Search"}};
    for (const auto& [code, there] : steps) {
        if (code != 0)
            key(code);
        EXPECT_EQ(focused(), there);
    }
    EXPECT_FALSE(find("Number 10"));
    key(Qt::Key_Escape);
    EXPECT_TRUE(find("Number 10")) << "all of them again";
    for (const int letter : {Qt::Key_2, Qt::Key_7})
        key(letter);
    key(Qt::Key_Return);
    ASSERT_TRUE(alone());
    EXPECT_EQ(stored("bundleID"), "com.example.n27");

    key(Qt::Key_F, Qt::ControlModifier);
    waitFor("Number 27");
    key(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(focused(), "Search");
    for (const int code : {Qt::Key_O, Qt::Key_N, Qt::Key_Down})
        key(code);
    EXPECT_EQ(focused(), "One");
    key(Qt::Key_Enter);
    EXPECT_EQ(stored("bundleID"), "com.example.one");
}

TEST_F(HandTest, AColorIsPickedByKeysAndShown) {
    click("Select color");
    ASSERT_TRUE(settled());
    const auto& picker = static_cast<const QZColorPickerViewController&>(
        *static_cast<NavigationController*>(modals.topmost())->topViewController());
    QSet<QString> names;
    int marked = 0;
    for (const QQuickItem* swatch : window->activeFocusItem()->parentItem()->childItems()) {
        auto* element = QAccessible::queryAccessibleInterface(const_cast<QQuickItem*>(swatch));
        if (!element || element->role() != QAccessible::Button)
            continue;
        names.insert(element->text(QAccessible::Name));
        marked += element->state().selected;
    }
    EXPECT_EQ(names.size(), 216);
    EXPECT_EQ(marked, 1);
    const std::vector<std::pair<std::vector<int>, std::size_t>> ways{
        {{Qt::Key_Left, Qt::Key_Up}, 0},
        {{Qt::Key_Right, Qt::Key_Right}, 2},
        {{Qt::Key_Down, Qt::Key_Down}, 14}, // six in a row
        {{Qt::Key_Up, Qt::Key_Left}, 7},
        {{Qt::Key_End, Qt::Key_Right, Qt::Key_Down}, 215},
        {{Qt::Key_Home}, 0},
        {{Qt::Key_End, Qt::Key_Up}, 209}};
    for (const auto& [keys, item] : ways) {
        for (const int code : keys)
            key(code);
        EXPECT_EQ(focused(), ColorWords::componentsOf(drawable(picker.colors().at(item)))) << item;
        EXPECT_TRUE(window->contentItem()->contains(placeOf(focused()))) << item;
    }
    const QColor picked = drawable(picker.colors().at(209));
    key(Qt::Key_Space);
    ASSERT_TRUE(alone());
    EXPECT_EQ(prefs().colorView.backgroundColor(), picked);
    EXPECT_EQ(window->grabWindow().pixelColor(placeOf("Color")).rgb(), picked.rgb());
}

TEST_F(HandTest, KeysLeadFromTabToTabToHelpAndOut) {
    for (const int tab : {1, 2, 0, 1}) {
        key(Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(root->selectedIndex(), tab);
    }
    key(Qt::Key_Tab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(root->selectedIndex(), 0);
    prefs().showSimpleAlertWithTitle("T", "M", "Ok");
    key(Qt::Key_F1);
    EXPECT_EQ(root->selectedIndex(), 0) << "below an alert";
    click("Ok");
    ASSERT_TRUE(alone());
    for (int again = 0; again < 2; ++again) {
        key(Qt::Key_F1);
        EXPECT_EQ(root->selectedIndex(), 1);
        EXPECT_TRUE(root->tabBarHidden());
        EXPECT_EQ(static_cast<NavigationController*>(root->viewControllerAt(1))
                      ->topViewController()
                      ->title(),
                  "Instructions");
    }
    click("About"); // back from the one page
    EXPECT_FALSE(root->tabBarHidden());
    key(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(HandTest, RowsOfTheAboutScreenLeadOutAndToHelpPages) {
    root->setSelectedIndex(3); // which is not there
    root->setSelectedIndex(1);
    auto& tab = static_cast<NavigationController&>(*root->viewControllerAt(1));
    auto& screen = static_cast<AboutTableViewController&>(*tab.topViewController());
    const TableView& table = screen.aboutTable;
    EXPECT_EQ(screen.versionString.text(), "Version 57");
    const std::vector<std::string> clients{
        "tweetbot:", "twitterrific:", "tweetings:", "twitter:", "https:"};
    outside.installed = clients;
    for (const std::string& client : clients) { // in the order of preference
        click("Follow @iQ7r2m");
        EXPECT_EQ(outside.opened.back().rfind(client), 0U) << outside.opened.back();
        EXPECT_TRUE(outside.opened.back().ends_with("iQ7r2m")) << client;
        EXPECT_TRUE(table.selectedSection() == -1 && !table.selectionAnimated());
        std::erase(outside.installed, client);
    }
    click("Donate");
    EXPECT_TRUE(outside.opened.back().starts_with("https://payments."));
    EXPECT_TRUE(table.selectedSection() == -1 && !table.selectionAnimated());
    screen.mail();
    EXPECT_TRUE(outside.opened.back().starts_with("mailto:support%40"));
    EXPECT_TRUE(outside.opened.back().ends_with("%20Support"));
    EXPECT_EQ(outside.opened.size(), 7U);

    int row = 0;
    const int rows = screen.tableViewNumberOfRowsInSection(1);
    for (const char* page :
         {"Instructions http://a:8/pages/dubrix-instructions.php",
          "Changelog http://a:8/pages/dubrix-changelog.php",
          "Credits & FAQ http://a:8/pages/dubrix-faqcredits.php", "Instructions "}) {
        outside.site = row < rows ? "http://a:8" : "";
        screen.tableViewDidSelectRowAtIndexPath(1, row % rows);
        auto* shown = qobject_cast<QVWebViewController*>(tab.topViewController());
        ASSERT_TRUE(shown);
        EXPECT_EQ(shown->title() + " " + shown->webView->request().toString(), page);
        EXPECT_TRUE(shown->activityIndicator->animating() && !shown->webView->bounces());
        EXPECT_EQ(table.selectedRow(), row++ % rows) << "below its page";
        tab.popViewController();
        EXPECT_TRUE(table.selectedRow() == -1 && table.selectionAnimated());
    }
    screen.tableViewDidSelectRowAtIndexPath(1, rows);
    EXPECT_FALSE(tab.canGoBack());
    EXPECT_EQ(log.lines.back(), "\nindexPath.row 3 \nindex.section 1 \n");
}

TEST_F(HandTest, RowsObeyTheirCells) {
    // The row's height follows what is stored; the cell is hidden even where that cannot be
    // written.
    const std::pair<TableViewCell*, const char*> cells[] = {{&prefs().textfieldCell, "Name"},
                                                            {&prefs().colorCell, "Select color"},
                                                            {&prefs().colorView, "Color"}};
    for (const auto& [cell, name] : cells) {
        EXPECT_TRUE(find(name)) << name;
        cell->setHidden(true);
        EXPECT_FALSE(find(name)) << name;
        cell->setHidden(false);
    }
    find("Name")->setText(QAccessible::Value, "Dictated");
    EXPECT_EQ(stored("customText"), "Dictated");
}

TEST_F(HandTest, TabGoesOnAfterTheFieldThatReturnHasLeft) {
    click("Name");
    QTest::keyClick(window, 'x');
    key(Qt::Key_Return);
    EXPECT_NE(focused(), "Name");
    key(Qt::Key_Tab);
    EXPECT_EQ(focused(), "Custom color");
    key(Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_EQ(focused(), "Name");
}

} // namespace dubrix
