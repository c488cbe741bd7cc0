#include "controls/Appearance.h"
#include "controls/ApplicationIconProvider.h"
#include "tests/screens/WholeWindow.h"

#include <QQmlExtensionPlugin>
#include <QTimer>
#include <fcntl.h>
#include <private/qinputmethod_p.h>
#include <qpa/qplatforminputcontext.h>
#include <sys/stat.h>

Q_IMPORT_QML_PLUGIN(DubrixPlugin)

namespace dubrix {

/// What is seen of the window.
class LookTest : public WholeWindow {
protected:
    /// Everything below the window that is drawn.
    template<typename Look>
    static void eachDrawn(const QQuickItem* item, const Look& look) {
        if (!item->isVisible() || item->opacity() == 0)
            return;
        look(*item);
        for (const QQuickItem* child : item->childItems())
            eachDrawn(child, look);
    }
    /// Words that do not stand whole in the window.
    QStringList cut() const {
        EXPECT_TRUE(settled());
        QStringList cut;
        eachDrawn(window->contentItem(), [&](const QQuickItem& item) {
            const QRectF place = item.mapRectToScene({0, 0, item.width(), item.height()});
            if (item.inherits("QQuickText") && place.bottom() > 0 &&
                place.top() < window->height() &&
                (item.property("truncated").toBool() || place.left() < 0 ||
                 place.right() > window->width()))
                cut << item.property("text").toString();
        });
        return cut;
    }
};

TEST_F(LookTest, TheSelectedTabHasTheFullerImage) {
    /// How much of each tab's image is covered.
    const auto ink = [this] {
        std::vector<double> sums;
        eachDrawn(window->contentItem(), [&](const QQuickItem& item) {
            if (!item.inherits("QQuickImage") || !item.parentItem()->property("tint").isValid())
                return;
            const QString source = item.property("source").toUrl().path().mid(1);
            const QImage image = TemplateImageProvider().requestImage(source, nullptr, {25, 25});
            sums.push_back(0);
            for (int dot = 0; dot < image.width() * image.height(); ++dot)
                sums.back() += image.pixelColor(dot % image.width(), dot / image.width()).alphaF();
        });
        return sums;
    };
    for (int tab = 0; tab < 3; ++tab) {
        root->setSelectedIndex(tab);
        const double selected = ink().at(tab);
        root->setSelectedIndex((tab + 1) % 3);
        EXPECT_GT(ink().at(tab), 20) << tab;
        EXPECT_GT(selected, 1.1 * ink().at(tab)) << tab;
    }
    for (const auto& item : root->items()) {
        EXPECT_EQ(item->image.renderingMode, TemplateImage::RenderingMode::AlwaysTemplate);
        EXPECT_EQ(item->selectedImage.renderingMode, item->image.renderingMode);
    }
    EXPECT_EQ(delegate.applicationSupportedInterfaceOrientationsForWindow(), 30U) << "all four";
}

/// Without movement, and with type of this size: 20 is for a person who sees badly.
template<int points = 11>
struct Still {
    Still() { choose(true, points); }
    ~Still() { choose(false, 11); }
    static void choose(bool still, int size) {
        chooseMotion(still);
        QFont font = QGuiApplication::font();
        font.setPointSize(size);
        QGuiApplication::setFont(font);
    }
};

class LargeTypeTest : private Still<20>, public LookTest {};

TEST_F(LargeTypeTest, NoWordsAreCutInTheSmallestWindow) {
    EXPECT_GT(window->minimumWidth(), 500);
    window->resize(window->minimumSize());
    QCoreApplication::processEvents();
    EXPECT_EQ(cut(), QStringList());
    for (const char* row : {"Application", "Select color", "Duplicate"}) {
        itemOf(row)->forceActiveFocus();
        key(Qt::Key_Return);
        ASSERT_TRUE(modals.topmost()) << row;
        EXPECT_EQ(cut(), QStringList()) << row;
        key(Qt::Key_Escape);
        ASSERT_TRUE(alone());
    }
    click("About");
    EXPECT_EQ(cut(), QStringList());
}

class StillTest : private Still<>, public LookTest {};

TEST_F(StillTest, WhatComesIsThereAtOnceAndGoesInItsTime) {
    prefs().showSimpleAlertWithTitle("T", "M", "Ok");
    EXPECT_TRUE(rested());
    click("Ok");
    ASSERT_TRUE(alone());
    click("Application");
    EXPECT_TRUE(rested()) << "a sheet";

    ProgressHUD::show("Done");
    const auto isDrawn = [this](const QQuickItem& item) {
        return item.isVisible() && item.opacity() == stage.hud()->alpha() &&
               item.scale() == stage.hud()->scale();
    };
    const QQuickItem& box = *itemOf("Done")->parentItem();
    EXPECT_TRUE(isDrawn(box) && box.opacity() == 1);
    struct Keyboard : QPlatformInputContext {
        QRectF keyboardRect() const override { return {0, 0, 300, 200}; }
    } keyboard;
    const auto middle = [&box] { return box.y() + box.height() / 2; };
    const double alone = middle();
    QInputMethodPrivate::get(QGuiApplication::inputMethod())->testContext = &keyboard;
    keyboard.emitKeyboardRectChanged();
    EXPECT_EQ(middle(), alone - 100);
    ProgressHUD::show("Done, too");
    EXPECT_EQ(middle(), alone - 100);
    QInputMethodPrivate::get(QGuiApplication::inputMethod())->testContext = nullptr;
    keyboard.emitKeyboardRectChanged();
    EXPECT_EQ(middle(), alone);
    ProgressHUD::dismiss();
    EXPECT_TRUE(isDrawn(box) && box.opacity() == 0);
    EXPECT_TRUE(stage.hud()->shown()) << "its time is the overlay's own";
    EXPECT_TRUE(QTest::qWaitFor([this] { return !stage.hud()->shown(); }));
}

// The overlay's label is as large as its text was measured.
TEST_F(StillTest, WhatTheOverlaySaysFitsIntoItsMeasure) {
    ASSERT_TRUE(QTest::qWaitFor([this] { return stage.mainScreenBounds().size.width > 0; }));
    for (const char* text :
         {"Tockwell successfully duplicated.", "Please wait...",
          "Cloning Fernleaf Notes 1\nPlease wait...", "ill will, ill wit",
          "Donaudampfschifffahrtsgesellschaft successfully duplicated.", "AVAVAV WAWAWA To Ty",
          "Ein Name mit Ümläuten, der länger als eine Zeile ist."}) {
        ProgressHUD::show(text);
        EXPECT_EQ(stage.spinner()->width(), 37) << "above the words";
        EXPECT_GT(stage.label()->y(), stage.spinner()->y() + 37);
        int seen = 0;
        eachDrawn(window->contentItem(), [&](const QQuickItem& item) {
            if (!item.inherits("QQuickText") || item.property("text") != QString(text))
                return;
            ++seen;
            EXPECT_FALSE(item.property("truncated").toBool()) << text;
            EXPECT_LE(item.property("contentWidth").toDouble(), item.width()) << text;
            EXPECT_GE(item.property("contentWidth").toDouble(), item.width() - 4) << text;
        });
        EXPECT_EQ(seen, 1) << text;
    }
}

TEST(Icons, AreDrawnRoundKeptAndGreyWhereThereIsNone) {
    int asked = 0;
    ApplicationIconProvider provider([&](const std::string& path, unsigned) {
        ++asked;
        std::optional<RgbaImage> picture;
        if (path.ends_with("red"))
            picture.emplace(40, 20);
        for (std::size_t byte = 0; picture && byte < 40 * 20 * 4; ++byte)
            picture->bytes[byte] = byte % 4 == 0 || byte % 4 == 3 ? 255 : 0;
        return picture;
    });
    const QImage red = provider.icon("/red", 58);
    EXPECT_EQ(red.size(), QSize(58, 58));
    EXPECT_EQ(red.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(red.pixelColor(29, 29), QColor(255, 0, 0));
    EXPECT_EQ(provider.icon("/red", 58), red);
    EXPECT_EQ(asked, 1);
    const QImage none =
        provider.icon("/none", 60).scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    EXPECT_LT(none.pixelColor(0, 0).hslSaturationF(), 0.2F) << "grey, unlike our own";
}

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
        if (const OverlayPiece& shade = *stage.background(); shade.shown()) {
            EXPECT_EQ(QRectF(shade.x(), shade.y(), shade.width(), shade.height()),
                      QRectF(QPointF(), window->size()));
            ProgressHUD::withdrawStage();
        }
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
