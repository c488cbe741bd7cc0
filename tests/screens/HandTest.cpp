#include "controls/Appearance.h"
#include "controls/ApplicationIconDrawing.h"
#include "overlays/ProgressHUD.h"
#include "tests/screens/WholeWindow.h"
#include "tests/support/ScreenReader.h"
#include "tests/support/StoredText.h"

#include <QQuickItem>

namespace dubrix {

/// The window under a pointer and a keyboard.
class HandTest : public WholeWindow {
protected:
    QAccessibleInterface* find(const QString& name) const { return reader.find(name); }
    QString focused() const {
        QAccessibleInterface* element =
            QAccessible::queryAccessibleInterface(window->activeFocusItem());
        return element ? element->text(QAccessible::Name) : QString();
    }
    /// The middle of what has this name, where it stands now.
    QPoint placeOf(const QString& name) const {
        QAccessibleInterface* element = find(name);
        EXPECT_TRUE(element) << name.toStdString();
        if (!element)
            return {};
        const auto* item = qobject_cast<QQuickItem*>(element->object());
        return item->mapRectToScene({0, 0, item->width(), item->height()}).center().toPoint();
    }
    void click(const QPoint& place) const {
        QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier, place);
    }
    void click(const QString& name) const { click(placeOf(name)); }
    void key(int code, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::keyClick(window, static_cast<Qt::Key>(code), modifiers);
    }
    /// What the window system sends while a key is held.
    void repeat(int code) const {
        for (const QEvent::Type type : {QEvent::KeyRelease, QEvent::KeyPress}) {
            QKeyEvent event(type, code, Qt::NoModifier, QString(), true);
            QCoreApplication::sendEvent(window, &event);
        }
    }
    bool settled() {
        return QTest::qWaitFor([this] {
            return modals.rowCount() == (modals.topmost() ? 1 : 0) &&
                   (!modals.topmost() || rested());
        });
    }
    /// Whether the topmost modal screen has come all the way.
    bool rested() const {
        for (const QQuickItem* layer : window->contentItem()->childItems())
            if (layer->property("presence").isValid() && layer->property("presence").toReal() < 1)
                return false;
        return true;
    }
    void choose(const QString& application) {
        ASSERT_TRUE(QTest::qWaitFor([&] { return find(application); }));
        ASSERT_TRUE(settled());
        click(application);
        ASSERT_TRUE(QTest::qWaitFor([this] { return !modals.topmost(); }));
    }
    std::string chosen() { return storedText(files, log, "bundleID"); }

    const ScreenReader reader{window};
};

TEST_F(HandTest, ASecondClickDoesNotGoThroughWhatIsLeaving) {
    const QPoint places[] = {placeOf("Custom color"), placeOf("Duplicate"), placeOf("About")};
    click("Application");
    choose("One");
    ASSERT_EQ(modals.rowCount(), 1) << "still leaving";
    const std::size_t lines = log.lines.size();
    for (const QPoint& place : places)
        click(place);
    EXPECT_EQ(log.lines.size(), lines) << log.lines.back();
    EXPECT_EQ(root->selectedIndex(), 0);
    ASSERT_TRUE(settled());
    click("Custom color");
    EXPECT_EQ(log.lines.at(lines), "Custom Color OFF");
}

TEST_F(HandTest, ATapOnATabIsNoTapOnTheRowUnderIt) {
    window->resize(300, 360);
    QCoreApplication::processEvents();
    const std::size_t lines = log.lines.size();
    click("About");
    EXPECT_EQ(log.lines.size(), lines) << log.lines.back();
    EXPECT_EQ(root->selectedIndex(), 1);
    EXPECT_FALSE(modals.topmost());
}

TEST_F(HandTest, ADragOnARowScrollsAndPressesNothing) {
    window->resize(300, 360);
    QCoreApplication::processEvents();
    const QPoint start = placeOf("Custom name");
    const std::size_t lines = log.lines.size();
    QTest::mousePress(window, Qt::LeftButton, Qt::NoModifier, start);
    for (int step = 1; step <= 12; ++step)
        QTest::mouseMove(window, start - QPoint(0, 10 * step), 5);
    QTest::mouseRelease(window, Qt::LeftButton, Qt::NoModifier, start - QPoint(0, 120));
    EXPECT_LT(placeOf("Custom name").y(), start.y() - 60);
    EXPECT_EQ(log.lines.size(), lines) << log.lines.back();
}

TEST_F(HandTest, AHeldReturnAsksAndDoesNotAnswer) {
    QAccessibleInterface* const row = find("Duplicate");
    qobject_cast<QQuickItem*>(row->object())->forceActiveFocus();
    QTest::keyPress(window, Qt::Key_Return);
    ASSERT_TRUE(modals.topmost());
    ASSERT_TRUE(settled());
    EXPECT_EQ(focused(), "Duplicate");
    for (int again = 0; again < 5; ++again)
        repeat(Qt::Key_Return);
    QTest::keyRelease(window, Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_TRUE(modals.topmost()) << "nobody answered";
    key(Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([this] { return modals.rowCount() == 0; }));
    key(Qt::Key_Enter); // the keypad's
    EXPECT_TRUE(modals.topmost());
}

TEST_F(HandTest, EscapeCancelsOnlyWhatCanBeCancelled) {
    std::string ran;
    const auto noting = [&ran](const char* what) { return [&ran, what] { ran += what; }; };
    const auto answered = [&] {
        QCoreApplication::processEvents();
        return !modals.topmost();
    };
    prefs().show2ButtonAlertWithTitle("T", "M", "Yes", "No", noting("no "), noting("yes "));
    EXPECT_EQ(focused(), "Yes");
    key(Qt::Key_Left);
    EXPECT_EQ(focused(), "No");
    key(Qt::Key_Escape);
    EXPECT_TRUE(answered());
    prefs().show3ButtonAlertWithTitle("T", "M", "A", "B", "C", noting("a "), noting("b "));
    key(Qt::Key_Escape);
    EXPECT_FALSE(answered());
    EXPECT_EQ(focused(), "A");
    key(Qt::Key_Return);
    EXPECT_TRUE(answered());
    prefs().showSimpleAlertWithTitle("T", "M", "Ok");
    key(Qt::Key_Escape);
    EXPECT_FALSE(answered());
    EXPECT_EQ(ran, "no a ");
}

TEST_F(HandTest, ThePickerTakesKeysTheMomentItOpens) {
    for (int number = 10; number < 60; ++number)
        install("com.example.n" + std::to_string(number), "Number " + std::to_string(number));
    storeText(files, log, "bundleID", "com.example.n40");
    click("Application");
    ASSERT_TRUE(QTest::qWaitFor([this] { return find("Number 40"); }));
    EXPECT_EQ(focused(), "Number 40");
    ASSERT_TRUE(settled());
    EXPECT_LT(placeOf("Number 40").y(), window->height());
    EXPECT_GT(placeOf("Number 40").y(), 0);
    key(Qt::Key_Down);
    EXPECT_EQ(focused(), "Number 41");
    key(Qt::Key_Home);
    EXPECT_EQ(focused(), "Number 10");
    for (const int letter : {Qt::Key_2, Qt::Key_7})
        key(letter);
    EXPECT_EQ(focused(), "Search");
    key(Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([this] { return modals.rowCount() == 0; }));
    EXPECT_EQ(chosen(), "com.example.n27");

    key(Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(QTest::qWaitFor([this] { return find("Number 27"); }));
    key(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(focused(), "Search");
    QTest::keyClick(window, 'o');
    QTest::keyClick(window, 'n');
    key(Qt::Key_Down);
    EXPECT_EQ(focused(), "One");
    key(Qt::Key_Enter);
    EXPECT_EQ(chosen(), "com.example.one");
}

TEST_F(HandTest, KeysLeadFromTabToTabToHelpAndOut) {
    for (const int tab : {1, 2, 0, 1}) {
        key(Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(root->selectedIndex(), tab);
    }
    root->setSelectedIndex(0);
    prefs().showSimpleAlertWithTitle("T", "M", "Ok");
    key(Qt::Key_F1);
    EXPECT_EQ(root->selectedIndex(), 0) << "below an alert";
    click("Ok");
    ASSERT_TRUE(QTest::qWaitFor([this] { return modals.rowCount() == 0; }));
    key(Qt::Key_F1);
    EXPECT_EQ(root->selectedIndex(), 1);
    EXPECT_TRUE(root->tabBarHidden()) << "a page is shown";
    key(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(HandTest, RowsObeyTheirCells) {
    // The row's height follows what is stored; the cell is hidden even where that cannot be
    // written.
    prefs().textfieldCell.setHidden(true);
    EXPECT_FALSE(find("Name"));
    prefs().textfieldCell.setHidden(false);

    QAccessibleInterface* const field = find("Name");
    ASSERT_TRUE(field);
    field->setText(QAccessible::Value, "Dictated");
    EXPECT_EQ(storedText(files, log, "customText"), "Dictated");
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

TEST_F(HandTest, ALongNameFadesWhereItGoesOn) {
    const QAccessibleInterface* const field = find("Name");
    ASSERT_TRUE(field);
    auto* const item = qobject_cast<QQuickItem*>(field->object());
    /// How clearly letters can be seen in these columns of the field, counted from the left or
    /// right.
    const auto ink = [&](int from, int to) {
        const QImage picture = window->grabWindow();
        const QRect area = item->mapRectToScene({0, 0, item->width(), item->height()}).toRect();
        const int ground = qGray(picture.pixel(area.left() - 4, area.center().y()));
        int most = 0;
        for (int x = from; x < to; ++x)
            for (int y = area.top(); y <= area.bottom(); ++y) {
                const QRgb seen = picture.pixel(x < 0 ? area.right() + x : area.left() + x, y);
                most = std::max(most, std::abs(qGray(seen) - ground));
            }
        return most;
    };
    prefs().textFieldChanged(QString(200, u'm'));
    QCoreApplication::processEvents();
    EXPECT_GT(ink(0, 20), 200);
    EXPECT_GT(ink(-60, -30), 200);
    EXPECT_LT(ink(-3, 0), 100) << "there is more";
    click("Name");
    key(Qt::Key_End);
    QCoreApplication::processEvents();
    EXPECT_LT(ink(0, 3), 100) << "there is more on the left";
    EXPECT_GT(ink(-30, 0), 200);
}

/// With the type of a person who sees badly.
struct LargeType {
    LargeType() { chooseSize(20); }
    ~LargeType() { chooseSize(11); }
    static void chooseSize(int points) {
        QFont font = QGuiApplication::font();
        font.setPointSize(points);
        QGuiApplication::setFont(font);
    }
};

class LargeTypeTest : private LargeType, public HandTest {
protected:
    /// Words that do not stand whole in the window.
    QStringList cut() {
        EXPECT_TRUE(settled());
        QStringList cut;
        const std::function<void(const QQuickItem*)> look = [&](const QQuickItem* item) {
            if (!item->isVisible() || item->opacity() == 0)
                return;
            const QVariant text = item->property("text");
            const QRectF place = item->mapRectToScene({0, 0, item->width(), item->height()});
            if (item->inherits("QQuickText") && place.bottom() > 0 &&
                place.top() < window->height() &&
                (item->property("truncated").toBool() || place.left() < 0 ||
                 place.right() > window->width()))
                cut << text.toString();
            for (const QQuickItem* child : item->childItems())
                look(child);
        };
        look(window->contentItem());
        return cut;
    }
};

TEST_F(LargeTypeTest, NoWordsAreCutInTheSmallestWindow) {
    EXPECT_GT(window->minimumWidth(), 500);
    window->resize(window->minimumSize());
    QCoreApplication::processEvents();
    EXPECT_EQ(cut(), QStringList());
    for (const char* row : {"Application", "Select color", "Duplicate"}) {
        qobject_cast<QQuickItem*>(find(row)->object())->forceActiveFocus();
        key(Qt::Key_Return);
        ASSERT_TRUE(modals.topmost()) << row;
        EXPECT_EQ(cut(), QStringList()) << row;
        key(Qt::Key_Escape);
        ASSERT_TRUE(QTest::qWaitFor([this] { return modals.rowCount() == 0; }));
    }
    click("About");
    EXPECT_EQ(cut(), QStringList());
}

TEST(IconDrawing, WhatHasNoIconDoesNotLookLikeUs) {
    const QImage none = drawnPlaceholder(60);
    const QImage own(QStringLiteral(":/resources/AppIcon.png"));
    ASSERT_FALSE(own.isNull());
    const auto saturation = [](const QImage& image) {
        const QImage small = image.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        return small.pixelColor(0, 0).hslSaturationF();
    };
    EXPECT_LT(saturation(none), 0.2F) << "grey";
    EXPECT_GT(saturation(own), 0.5F);
    int lines = 0;
    for (int x = 0; x < 60; ++x)
        lines += qGray(none.pixel(x, 20)) < qGray(none.pixel(5, 8)) - 10 ? 1 : 0;
    EXPECT_GT(lines, 4) << "with something on it";
}

struct Stillness {
    Stillness() { chooseMotion(true); }
    ~Stillness() { chooseMotion(false); }
};

class StillTest : private Stillness, public HandTest {};

TEST_F(StillTest, WhatComesIsThereAtOnceAndGoesInItsTime) {
    prefs().showSimpleAlertWithTitle("T", "M", "Ok");
    EXPECT_TRUE(rested());
    click("Ok");
    ASSERT_TRUE(QTest::qWaitFor([this] { return modals.rowCount() == 0; }));
    click("Application");
    EXPECT_TRUE(rested()) << "a sheet";

    ProgressHUD::show("Done");
    const auto isDrawn = [this](const QQuickItem& item) {
        return item.isVisible() && item.opacity() == stage.hud()->alpha() &&
               item.scale() == stage.hud()->scale();
    };
    const QAccessibleInterface* const box = find("Done");
    ASSERT_TRUE(box);
    const auto& item = *qobject_cast<QQuickItem*>(box->object())->parentItem();
    EXPECT_TRUE(isDrawn(item) && item.opacity() == 1);
    ProgressHUD::dismiss();
    EXPECT_TRUE(isDrawn(item) && item.opacity() == 0);
    EXPECT_TRUE(stage.hud()->shown()) << "its time is the overlay's own";
    EXPECT_TRUE(QTest::qWaitFor([this] { return !stage.hud()->shown(); }));
}

} // namespace dubrix
