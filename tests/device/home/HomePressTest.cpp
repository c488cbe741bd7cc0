#include "controls/ApplicationIconProvider.h"
#include "device/home/HomeScreen.h"
#include "device/home/Wallpaper.h"
#include "tests/device/home/HomeDevice.h"
#include "tests/support/ScreenReader.h"

#include <QMimeData>
#include <QQmlApplicationEngine>
#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QTest>
#include <fcntl.h>
#include <unistd.h>

Q_IMPORT_QML_PLUGIN(DubrixHomePlugin)

namespace dubrix {

/// The home screen's window over a device with two applications. Nobody carries out its requests,
/// which it remarks on, unless it has a desk.
class HomePress : public HomeDevice {
protected:
    explicit HomePress(Errands* errands = nullptr) {
        install("One");
        install("Two");
        applications = std::make_unique<HomeApplications>(device.root());
        home = std::make_unique<HomeScreen>(*applications, errands, "/");
        engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
        engine.addImageProvider(QLatin1String(Wallpaper::name), new Wallpaper);
        engine.addImageProvider(QLatin1String(ApplicationIconProvider::name),
                                new ApplicationIconProvider([](const std::string&, unsigned) {
                                    return std::optional<RgbaImage>();
                                }));
        engine.setInitialProperties({{QStringLiteral("home"), QVariant::fromValue(home.get())}});
        engine.load(QUrl(QStringLiteral("qrc:/qt/qml/DubrixHome/HomeWindow.qml")));
        window = qobject_cast<QQuickWindow*>(engine.rootObjects().value(0));
    }
    void SetUp() override {
        ASSERT_TRUE(window && QTest::qWaitForWindowExposed(window));
        window->requestActivate();
        ASSERT_TRUE(QTest::qWaitFor([this] { return reader.find("Two"); }));
    }
    /// What the keyboard is at.
    QString focused() const {
        QAccessibleInterface* element =
            QAccessible::queryAccessibleInterface(window->activeFocusItem());
        return element ? element->text(QAccessible::Name) : QString();
    }
    void key(Qt::Key code, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::keyClick(window, code, modifiers);
    }

    std::unique_ptr<HomeApplications> applications;
    std::unique_ptr<HomeScreen> home;
    QQmlApplicationEngine engine;
    QQuickWindow* window = nullptr;
    const ScreenReader reader{window};
};

TEST_F(HomePress, AQuestionIsToldAndAnsweredTheMomentItComes) {
    key(Qt::Key_Tab);
    key(Qt::Key_Tab);
    key(Qt::Key_Delete);
    auto* question = qobject_cast<QQuickItem*>(reader.find("Cancel")->object());
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
    const auto asked = [&] {
        EXPECT_EQ(focused(), "Cancel");
        return std::exchange(told, {}).join(u',');
    };
    key(Qt::Key_Delete);
    EXPECT_EQ(asked(), "Remove “One”?");
    const QQuickItem* const layer = question->parentItem()->parentItem();
    ASSERT_TRUE(QTest::qWaitFor([layer] { return layer->opacity() == 1; }));
    for (const Qt::Key code : {Qt::Key_Return, Qt::Key_Menu, Qt::Key_Down, Qt::Key_Return})
        key(code);
    EXPECT_EQ(asked(), "Remove “One”?") << "by the menu, while the one before fades";
    home->remove("com.example.Two");
    key(Qt::Key_Escape);
    EXPECT_EQ(asked(), "Remove “Two”?") << "which has waited";
    key(Qt::Key_Right);
    key(Qt::Key_Return);
    EXPECT_TRUE(home->remark().startsWith("This is only possible")) << home->remark().toStdString();
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
        for (QDropEvent* event :
             {static_cast<QDropEvent*>(&enter), static_cast<QDropEvent*>(&move)}) {
            event->setDropAction(Qt::MoveAction); // as its source would have it
            QCoreApplication::sendEvent(window, event);
        }
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
    const auto remarkAfter = [&](ScreenReader::Element* pressed) {
        home->remarkPassed();
        ScreenReader::press(pressed);
        return home->remark();
    };

    ScreenReader::Element *const icon = reader.find("One"), *const dock = reader.find("Dubrix");
    home->remove("com.example.One"); // asks
    for (ScreenReader::Element* covered : {icon, dock})
        EXPECT_EQ(remarkAfter(covered), "");
    EXPECT_FALSE(reader.find("One") || reader.find("Dubrix"));
    ScreenReader::press(reader.find("Cancel"));
    EXPECT_FALSE(reader.find("Cancel")) << "leaving";
    EXPECT_NE(remarkAfter(icon), "");
    EXPECT_NE(remarkAfter(dock), "");

    // The menu of an icon, over which a failure is told.
    key(Qt::Key_Right); // to the second icon
    key(Qt::Key_Menu);
    ScreenReader::Element* const choice = reader.find("Export");
    ASSERT_TRUE(choice);
    EXPECT_FALSE(reader.find("One"));
    home->remove("com.example.One");
    EXPECT_EQ(remarkAfter(choice), "");
    EXPECT_FALSE(reader.find("Export"));
    home->alertDismissed();
    EXPECT_EQ(reader.find("Export"), choice);
    EXPECT_EQ(choice->object(), window->activeFocusItem()) << "the keyboard is back, too";
    EXPECT_NE(remarkAfter(choice), "");
}

/// The test is the launcher.
class HomeDesk {
protected:
    HomeDesk() {
        EXPECT_EQ(::pipe2(answers, O_CLOEXEC) + ::pipe2(requests, O_CLOEXEC | O_NONBLOCK), 0);
        desk = std::make_unique<Desk>(answers[0], requests[1]);
        errands = std::make_unique<Errands>(*desk);
    }
    ~HomeDesk() {
        ::close(answers[1]);
        ::close(requests[0]);
    }
    void answer(const QByteArray& line) const {
        EXPECT_EQ(::write(answers[1], line.constData(), static_cast<std::size_t>(line.size())),
                  line.size());
    }
    /// What the window asks for next; empty when it does not.
    QByteArray asked() const {
        QByteArray text(200, '\0');
        const ssize_t count = ::read(requests[0], text.data(), 200);
        return text.left(std::max<ssize_t>(count, 0)).replace('\0', ' ').trimmed();
    }

    int answers[2] = {-1, -1};
    int requests[2] = {-1, -1};
    std::unique_ptr<Desk> desk;
    std::unique_ptr<Errands> errands;
};

class HomeUndo : private HomeDesk, public HomePress {
protected:
    HomeUndo() : HomePress(errands.get()) {}
    using HomeDesk::answer;
    using HomeDesk::asked;

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
};

TEST_F(HomeUndo, ARemovalIsUndoneByEveryHand) {
    const auto isBack = [&] {
        answer("back\tcom.example.One\n");
        return says("One is back");
    };
    const auto undoByKeys = [this] { key(Qt::Key_Z, Qt::ControlModifier); };
    undoByKeys();
    EXPECT_EQ(asked(), "") << "nothing has been removed";

    remove("One");
    undoByKeys();
    undoByKeys();
    EXPECT_EQ(asked(), "restore com.example.One") << "once";
    EXPECT_TRUE(isBack());
    EXPECT_FALSE(reader.find("Undo"));

    home->remarkPassed();
    remove("One");
    ScreenReader::press(reader.find("Undo"));
    EXPECT_EQ(asked(), "restore com.example.One");
    EXPECT_TRUE(isBack());

    // By Tab and Return: then the keyboard is among the icons again.
    home->remarkPassed();
    remove("One");
    for (int tries = 0; focused() != "Undo" && tries < 5; ++tries)
        key(Qt::Key_Tab);
    key(Qt::Key_Return);
    EXPECT_EQ(asked(), "restore com.example.One");
    EXPECT_EQ(focused(), "One");
    EXPECT_TRUE(isBack());
}

TEST_F(HomeUndo, OnlyTheLastRemovalAndAsLongAsItIsPossible) {
    remove("One");
    home->tap("com.example.Two");
    EXPECT_FALSE(reader.find("Undo")) << "of another remark";
    home->remarkPassed();
    EXPECT_TRUE(reader.find("Undo"));
    home->remove("com.example.Two");
    EXPECT_FALSE(reader.find("Undo")) << "below a question";
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(asked(), "");
    home->alertDismissed();
    remove("Two");
    home->remarkPassed();
    EXPECT_FALSE(reader.find("Undo")) << "put away";
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
