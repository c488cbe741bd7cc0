#include "device/home/HomePage.h"
#include "device/home/HomeScreen.h"
#include "device/home/Wallpaper.h"
#include "tests/device/DeviceFolder.h"
#include "tests/support/QuickWindow.h"
#include "tests/support/RegisteredBundles.h"

#include <QGuiApplication>
#include <QMimeData>
#include <QQmlExtensionPlugin>
#include <QSignalSpy>
#include <sys/socket.h>
#include <unistd.h>

Q_IMPORT_QML_PLUGIN(DubrixHomePlugin)

namespace dubrix {

/// A device whose applications come and go.
class HomeDevice : public testing::Test {
protected:
    HomeDevice() { makeFoldersOf(registry); }

    /// As com.example.NAME.
    void install(const std::string& name, const std::string& more = "") const {
        enterBundle(registry, "com.example." + name, name, more);
    }
    void strike(const std::string& name) const {
        ASSERT_TRUE(static_cast<bool>(registry.strike("com.example." + name)));
    }

    const DeviceFolder device;
    const Registry registry = device.registry();
};

class HomePageTest : public HomeDevice {
protected:
    /// Waits for the file system's word, as the window does.
    static void expectChange(HomeApplications& applications) {
        QSignalSpy spy(&applications, &HomeApplications::changed);
        EXPECT_TRUE(spy.wait(10000));
    }
    /// "slot:name" of each row, in the rows' order; + for arriving and - for leaving ones.
    static QString rows(const HomePage& page) {
        QStringList rows;
        for (int row = 0; row < page.rowCount(); ++row) {
            const auto value = [&](int role) { return page.data(page.index(row), role); };
            rows += value(HomePage::SlotRole).toString() + ":" +
                    value(HomePage::NameRole).toString() +
                    (value(HomePage::ArrivingRole).toBool() ? "+" : "") +
                    (value(HomePage::LeavingRole).toBool() ? "-" : "");
        }
        return rows.join(u' ');
    }
};

TEST_F(HomePageTest, ShowsWhatIsInstalledWhereItBelongs) {
    for (const char* name : {"Notes10", "Notes2", "apples"})
        install(name);
    install("Hidden", "SBAppTags = (hidden);");
    putFile(device.root() / "Applications/S.app/Info.plist", "{CFBundleIdentifier = system;}");
    HomeApplications applications(device.root());
    HomePage first;
    HomePage second;
    int number = 0;
    for (HomePage* page : {&first, &second}) {
        page->setApplications(&applications);
        page->setPage(number++);
        page->setCapacity(2);
    }
    expectChange(applications);
    EXPECT_EQ(rows(first), "0:apples 1:Notes2");
    EXPECT_EQ(rows(second), "0:Notes10");

    const QSignalSpy moved(&second, &HomePage::dataChanged);
    install("Bells"); // pushes one to the next page, where it is not new
    expectChange(applications);
    EXPECT_EQ(moved.count(), 1);
    EXPECT_EQ(rows(first), "0:apples 1:Bells+");
    EXPECT_EQ(rows(second), "0:Notes2 1:Notes10");

    strike("apples");
    expectChange(applications);
    EXPECT_EQ(rows(first), "0:apples- 0:Bells+ 1:Notes2");
    EXPECT_EQ(rows(second), "0:Notes10");
    install("apples"); // back before it has left the screen
    expectChange(applications);
    first.gone("com.example.Bells"); // which is not leaving
    EXPECT_TRUE(rows(first).contains("apples-"));
    first.gone("com.example.apples");
    second.setPage(-1); // on its way out
    EXPECT_EQ(rows(second), "");
    EXPECT_EQ(rows(first), "0:apples+ 1:Bells+");

    for (const char* name : {"apples", "Bells", "Notes2", "Notes10"})
        strike(name);
    for (int changes = 0; applications.count() > 0 && changes < 4; ++changes)
        expectChange(applications);
    EXPECT_EQ(rows(first), "0:apples+- 1:Bells+-");
}

TEST_F(HomePageTest, FindsARegistryThatIsMadeLater) {
    std::filesystem::remove_all(registry.hostPath(Registry::registryPath));
    HomeApplications applications(device.root());
    expectChange(applications);
    EXPECT_EQ(applications.count(), 0);
    std::filesystem::create_directories(registry.hostPath(Registry::registryPath));
    install("Late");
    for (int changes = 0; applications.count() == 0 && changes < 4; ++changes)
        expectChange(applications);
    EXPECT_EQ(applications.count(), 1);
    HomeScreen alone(applications, nullptr, "/");
    alone.save("com.example.Late");
    EXPECT_TRUE(alone.remark().startsWith("This is only possible when the launcher"));
}

TEST(HomeScreen, KeysWalkInReadingOrder) {
    // Seven icons on pages of two rows of two: 0 1 / 2 3 | 4 5 / 6.
    const struct {
        int key;
        int from;
        int to;
    } cases[] = {
        {Qt::Key_Left, 0, 0},   {Qt::Key_Left, 4, 3},     {Qt::Key_Right, 3, 4},
        {Qt::Key_Right, 6, 6},  {Qt::Key_Up, 1, 1},       {Qt::Key_Up, 3, 1},
        {Qt::Key_Up, 4, 4},     {Qt::Key_Down, 2, 2},     {Qt::Key_Down, 4, 6},
        {Qt::Key_Down, 5, 5},   {Qt::Key_PageDown, 1, 5}, {Qt::Key_PageDown, 3, 6},
        {Qt::Key_PageUp, 6, 2}, {Qt::Key_PageUp, 1, 0},   {Qt::Key_Home, 6, 0},
        {Qt::Key_End, 0, 6},    {Qt::Key_A, 3, -1},
    };
    for (const auto& each : cases)
        EXPECT_EQ(HomeScreen::walk(each.key, each.from, 7, 2, 2), each.to)
            << each.key << " from " << each.from;
    EXPECT_EQ(HomeScreen::walk(Qt::Key_Right, 0, 0, 2, 2), 0);
    EXPECT_EQ(HomeScreen::walk(Qt::Key_Left, 0, 0, 0, 0), -1);
}

TEST(Wallpaper, HasAGlowInASkyOfItsAppearance) {
    for (const bool dark : {false, true}) {
        QSize size;
        const QImage image = Wallpaper().requestImage(dark ? "dark" : "light", &size, {});
        ASSERT_EQ(size, image.size());
        const auto light = [&](int x, int y) { return qGray(image.pixel(x, y)); };
        EXPECT_EQ(light(500, 0) < 128, dark);
        EXPECT_GT(light(640, 420), light(100, 420) + 5);
        EXPECT_NE(light(20, 0), light(20, 400)) << "above the hills, outside the glow";
    }
}

/// The home screen's window over a device with two applications. The test is the launcher.
class HomePress : public HomeDevice, protected QuickWindow {
protected:
    HomePress() {
        install("One");
        install("Two");
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
        desk = std::make_unique<Desk>(ends[0], ::dup(ends[0]));
        errands = std::make_unique<Errands>(*desk);
        applications = std::make_unique<HomeApplications>(device.root());
        home = std::make_unique<HomeScreen>(*applications, errands.get(), "/");
        engine->addImageProvider(QLatin1String(Wallpaper::name), new Wallpaper);
        open("qrc:/qt/qml/DubrixHome/HomeWindow.qml",
             {{QStringLiteral("home"), QVariant::fromValue(home.get())}});
        EXPECT_TRUE(QTest::qWaitFor([this] { return find("Two"); }));
    }
    ~HomePress() override {
        engine.reset();
        ::close(ends[1]);
    }
    void answer(const QByteArray& line) const {
        EXPECT_EQ(::write(ends[1], line.constData(), static_cast<std::size_t>(line.size())),
                  line.size());
    }
    /// What the window asks for next; empty when it does not.
    QByteArray asked() const {
        QByteArray text(200, '\0');
        const ssize_t count = ::recv(ends[1], text.data(), 200, MSG_DONTWAIT);
        return text.left(std::max<ssize_t>(count, 0)).replace('\0', ' ').trimmed();
    }
    /// Until the window says so.
    bool says(const QString& remark) const {
        return QTest::qWaitFor(
            [&] { return home->remark() == remark && home->errand().isEmpty(); });
    }
    void remove(const QString& name) {
        home->remove("com.example." + name);
        home->alertAccepted();
        EXPECT_EQ(asked(), "remove com.example." + name.toUtf8());
        answer("kept\tcom.example." + name.toUtf8() + "\n");
        ASSERT_TRUE(says(name + " is removed"));
    }

    int ends[2] = {-1, -1}; ///< the window's and ours
    std::unique_ptr<Desk> desk;
    std::unique_ptr<Errands> errands;
    std::unique_ptr<HomeApplications> applications;
    std::unique_ptr<HomeScreen> home;
};

TEST_F(HomePress, AQuestionIsToldAndAnsweredTheMomentItComes) {
    key(Qt::Key_Tab);
    key(Qt::Key_Tab);
    key(Qt::Key_Delete);
    auto* question = qobject_cast<QQuickItem*>(find("Cancel")->object());
    const auto role = [](QQuickItem* item) {
        const QAccessibleInterface* element = QAccessible::queryAccessibleInterface(item);
        return element ? element->role() : QAccessible::NoRole;
    };
    while (role(question) != QAccessible::AlertMessage)
        question = question->parentItem();
    key(Qt::Key_Return); // before anything of it has been drawn
    EXPECT_EQ(home->alertTitle(), "");

    QStringList told; // those who hear the screen, who are told of what comes
    QObject::connect(question, &QQuickItem::visibleChanged, window, [&] {
        if (question->isVisible())
            told << home->alertTitle();
    });
    const auto questioned = [&] {
        EXPECT_EQ(focused(), "Cancel");
        return std::exchange(told, {}).join(u',');
    };
    key(Qt::Key_Delete);
    EXPECT_EQ(questioned(), "Remove “One”?");
    const QQuickItem* const layer = question->parentItem()->parentItem();
    ASSERT_TRUE(QTest::qWaitFor([layer] { return layer->opacity() == 1; }));
    for (const Qt::Key code : {Qt::Key_Return, Qt::Key_Menu, Qt::Key_Down, Qt::Key_Return})
        key(code);
    EXPECT_EQ(questioned(), "Remove “One”?") << "by the menu, while the one before fades";
    home->remove("com.example.Two");
    key(Qt::Key_Escape);
    EXPECT_EQ(questioned(), "Remove “Two”?") << "which has waited";
    key(Qt::Key_Right);
    key(Qt::Key_Return);
    EXPECT_EQ(asked(), "remove com.example.Two");
    EXPECT_TRUE(question->isVisible() && !find("Cancel")) << "leaving";
    const auto* fading = QAccessible::queryAccessibleInterface(question);
    EXPECT_EQ(fading->text(QAccessible::Name), "Remove “Two”?") << "with all that it said";
    EXPECT_TRUE(QTest::qWaitFor([&] { return !question->isVisible(); }));
}

TEST_F(HomePress, DroppedFilesStayWhereTheyComeFrom) {
    const auto answer = [this](const char* file) {
        QMimeData files;
        files.setUrls({QUrl(QString::fromLatin1(file))});
        QDragEnterEvent enter(QPoint(100, 100), Qt::CopyAction | Qt::MoveAction, &files,
                              Qt::LeftButton, Qt::NoModifier);
        QDragMoveEvent move(QPoint(110, 110), Qt::CopyAction | Qt::MoveAction, &files,
                            Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window, &enter);
        move.setDropAction(Qt::MoveAction); // as its source would have it
        QCoreApplication::sendEvent(window, &move);
        EXPECT_EQ(enter.isAccepted(), move.isAccepted());
        return move.isAccepted() ? move.dropAction() : Qt::IgnoreAction;
    };
    EXPECT_EQ(answer("file:///tmp/It.ipa"), Qt::CopyAction);
    EXPECT_EQ(answer("file:///tmp/It.txt"), Qt::IgnoreAction);
}

TEST_F(HomePress, TheKeyboardIsSeenWhereverItGoes) {
    const struct {
        Qt::Key key;
        const char* there;
    } steps[] = {{Qt::Key_Tab, "Dubrix"}, {Qt::Key_Tab, "One"}, {Qt::Key_Right, "Two"},
                 {Qt::Key_Tab, "Dubrix"}, {Qt::Key_Tab, "Two"}, {Qt::Key_Home, "One"},
                 {Qt::Key_End, "Two"},    {Qt::Key_Left, "One"}};
    for (const auto& [code, there] : steps) {
        key(code);
        EXPECT_EQ(focused(), there) << code;
    }
    key(Qt::Key_Enter); // the keypad's
    EXPECT_TRUE(home->remark().startsWith("One")) << home->remark().toStdString();
    key(Qt::Key_Delete);
    EXPECT_EQ(focused(), "Cancel");
    EXPECT_TRUE(home->alertText().contains("com.example.One"));
    key(Qt::Key_Escape);
    EXPECT_EQ(focused(), "One");
    key(Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(HomePress, WhatIsCoveredIsNeitherFoundNorPressed) {
    /// Whether something comes of it.
    const auto does = [&](Element* pressed) {
        home->remarkPassed();
        press(pressed);
        return !home->remark().isEmpty() || !asked().isEmpty();
    };
    Element *const icon = find("One"), *const dock = find("Dubrix");
    home->remove("com.example.One"); // asks
    EXPECT_FALSE(does(icon) || does(dock));
    EXPECT_FALSE(find("One") || find("Dubrix"));
    press(find("Cancel"));
    EXPECT_TRUE(does(icon) && does(dock));
    answer("started\n");
    EXPECT_TRUE(says(""));

    // The menu of an icon, over which a failure is told.
    key(Qt::Key_Right); // to the second icon
    key(Qt::Key_Menu);
    Element* const choice = find("Export");
    ASSERT_TRUE(choice);
    EXPECT_FALSE(find("One"));
    home->remove("com.example.One");
    EXPECT_FALSE(does(choice));
    EXPECT_FALSE(find("Export"));
    home->alertDismissed();
    EXPECT_EQ(find("Export"), choice);
    EXPECT_EQ(choice->object(), window->activeFocusItem()) << "the keyboard is back, too";
    EXPECT_TRUE(does(choice));
}

TEST_F(HomePress, ARemovalIsUndoneByEveryHand) {
    const auto undo = [this] { key(Qt::Key_Z, Qt::ControlModifier); };
    undo();
    EXPECT_EQ(asked(), "") << "nothing has been removed";
    const std::function<void()> ways[] = {[&] { undo(), undo(); }, [&] { press(find("Undo")); },
                                          [&] {
                                              for (int tab = 0; focused() != "Undo" && tab < 5;
                                                   ++tab)
                                                  key(Qt::Key_Tab);
                                              key(Qt::Key_Return);
                                          }};
    for (const auto& way : ways) {
        remove("One");
        way();
        EXPECT_EQ(asked(), "restore com.example.One") << "once";
        answer("back\tcom.example.One\n");
        EXPECT_TRUE(says("One is back"));
        EXPECT_FALSE(find("Undo"));
        home->remarkPassed();
    }
    EXPECT_EQ(focused(), "One") << "the keyboard is among the icons again";
}

TEST_F(HomePress, OnlyTheLastRemovalAndAsLongAsItIsPossible) {
    remove("One");
    home->tap("com.example.Two");
    EXPECT_FALSE(find("Undo")) << "of another remark";
    home->remarkPassed();
    EXPECT_TRUE(find("Undo"));
    home->remove("com.example.Two");
    EXPECT_FALSE(find("Undo")) << "below a question";
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(asked(), "");
    home->alertDismissed();
    remove("Two");
    home->remarkPassed();
    EXPECT_FALSE(find("Undo")) << "put away";
    home->undo();
    EXPECT_EQ(asked(), "restore com.example.Two");
    answer("failed\tno room\n");
    ASSERT_TRUE(says("“Two” was not put back"));
    EXPECT_EQ(home->alertText(), "no room");
    home->alertDismissed();
    home->undo();
    EXPECT_EQ(asked(), "restore com.example.Two") << "tried again";
}

} // namespace dubrix
