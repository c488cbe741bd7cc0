#include "overlays/ProgressHUD.h"
#include "tests/screens/WholeWindow.h"

#include <QTimer>
#include <fcntl.h>
#include <sys/stat.h>

namespace dubrix {

/// What a screen reader can press, and when. It reaches what a finger and the keyboard do not:
/// elements that are covered, and any of them while the event loop leaves user input alone.
class PressTest : public WholeWindow {
protected:
    void pressAll(const QList<Element*>& elements) const {
        for (Element* element : elements)
            press(element);
        QCoreApplication::processEvents();
    }
};

TEST_F(PressTest, WhatIsCoveredIsNeitherFoundNorPressed) {
    const QStringList names{"Application", "Custom name",       "Select color",
                            "Duplicate",   "Update duplicates", "About"};
    QList<Element*> elements;
    for (const QString& name : names) {
        elements.append(find(name));
        ASSERT_TRUE(elements.back()) << name.toStdString();
    }
    const std::pair<const char*, std::function<void()>> covers[] = {
        {"alert", [&] { prefs().showSimpleAlertWithTitle("T", "M", "Ok"); }},
        {"picker", [&] { press(elements[0]); }},
        {"work", [&] { modals.setSuspended(true); }},
        {"overlay", [] { ProgressHUD::show("Busy", false); }}};
    for (const auto& [what, cover] : covers) {
        SCOPED_TRACE(what);
        cover();
        QCoreApplication::processEvents();
        const auto state = [this] {
            return std::tuple(log.lines.size(), modals.rowCount(), root->selectedIndex());
        };
        const auto before = state();
        for (const QString& name : names)
            EXPECT_FALSE(find(name)) << name.toStdString();
        pressAll(elements);
        EXPECT_EQ(state(), before);

        while (ViewController* modal = modals.topmost())
            modals.dismiss(*modal, false);
        modals.setSuspended(false);
        if (stage.background()->shown())
            ProgressHUD::withdrawStage();
        ASSERT_TRUE(alone());
        for (int index = 0; index < names.size(); ++index)
            EXPECT_EQ(find(names[index]), elements[index]) << names[index].toStdString();
    }

    root->setSelectedIndex(1);
    const std::size_t lines = log.lines.size();
    pressAll(elements.first(5));
    EXPECT_EQ(log.lines.size(), lines) << "on a tab that is not shown";
    root->setSelectedIndex(0);
    press(elements[1]); // the switch
    ASSERT_TRUE(QTest::qWaitFor([&] { return log.lines.size() > lines; }));
    EXPECT_EQ(log.lines[lines], "Custom Name OFF") << "and what is uncovered works";
}

TEST_F(PressTest, NothingBeginsWhileThePipelineRuns) {
    // The first `cp` says that it has been started, and waits until it is let go on.
    const std::string runs = folder / "runs", gate = folder / "gate";
    ASSERT_EQ(::mkfifo(gate.c_str(), 0600), 0);
    putFile(folder / "tools/cp", "#!/bin/sh\necho run >>'" + runs + "'\nmkdir '" + runs +
                                     ".first' && cat '" + gate + "'\nexec /bin/cp \"$@\"\n");
    std::filesystem::permissions(folder / "tools/cp", std::filesystem::perms(0755));
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QByteArray((folder / "tools").c_str()) + ':' + path);

    const QList<Element*> rows{find("Duplicate"), find("Update duplicates"), find("Application")};
    int shown = -1;
    QString progress;
    bool comesAtOnce = false;
    QTimer inside;
    QObject::connect(&inside, &QTimer::timeout, window, [&] {
        const int opened = ::open(gate.c_str(), O_WRONLY | O_NONBLOCK);
        if (opened < 0)
            return;
        inside.stop();
        ::close(opened);
        for (Element* row : rows)
            press(row);
        // What was queued or timed comes without a row.
        prefs().showDuplicateAlert();
        prefs().showUpdateAlert();
        prefs().DuplicateStartAt(1);
        prefs().duplicateAppWithNumber("2");
        shown = 0; // beside the question, which fades or has gone
        for (int row = 0; row < modals.rowCount(); ++row)
            shown += !modals.data(modals.index(row), ModalStack::DismissingRole).toBool();
        progress =
            title() + (alert() ? "|" + alert()->message() + alert()->buttons().join(u'|') : "");
        const QModelIndex top = modals.index(modals.rowCount() - 1);
        comesAtOnce = !modals.data(top, ModalStack::AnimatedRole).toBool();
    });
    bool fades = false;
    QObject::connect(&modals, &ModalStack::dataChanged, window, [&](const QModelIndex& changed) {
        if (shown >= 0)
            fades = modals.data(changed, ModalStack::DismissingRole).toBool() &&
                    modals.data(changed, ModalStack::AnimatedRole).toBool();
    });
    press(rows[0]);
    ASSERT_TRUE(modals.topmost());
    press(find("Duplicate")); // the alert's
    inside.start();
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return !inside.isActive() && modals.rowCount() == 0; }, 20'000));
    qputenv("PATH", path);

    EXPECT_EQ(contentsOf(runs), "run\n") << "one pipeline";
    EXPECT_EQ(shown, 1) << "the progress, nothing beside";
    EXPECT_EQ(progress, "Dubrix|Cloning One 1\nPlease wait...\n\n");
    EXPECT_TRUE(comesAtOnce && fades) << "the progress, which fades when it goes";
    EXPECT_EQ(std::ranges::count(log.lines, "Dubrix - Duplicate Cell Clicked"), 1);
    EXPECT_FALSE(modals.suspended());
    EXPECT_TRUE(find("Duplicate") == rows[0]) << "there again";
}

} // namespace dubrix
