#include "device/home/HomeScreen.h"
#include "device/home/Wallpaper.h"
#include "tests/device/home/HomeDevice.h"
#include "tests/support/QuickWindow.h"

#include <QMimeData>
#include <QQmlExtensionPlugin>
#include <sys/socket.h>
#include <unistd.h>

Q_IMPORT_QML_PLUGIN(DubrixHomePlugin)

namespace dubrix {

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
    EXPECT_FALSE(find("Undo"));

    home->remarkPassed();
    remove("One");
    press(find("Undo"));
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
