#include "engine/DXShared.h"
#include "formats/lists/PropertyList.h"
#include "platform/ApplicationList.h"
#include "platform/ApplicationWorkspace.h"
#include "platform/ByteCountFormatter.h"
#include "platform/CommandRunner.h"
#include "platform/MonochromeFilter.h"
#include "platform/SystemLog.h"
#include "platform/posix/PosixPlatform.h"
#include "screens/NotificationCenter.h"
#include "screens/alerts/AlertController.h"
#include "screens/colors/FirstViewController.h"
#include "screens/colors/QZColorPickerViewController.h"
#include "screens/containers/ModalStack.h"
#include "screens/containers/NavigationController.h"
#include "screens/prefs/PrefsViewController.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/UnexpectedDownloads.h"

#include <QCoreApplication>

namespace dubrix {

namespace {

/// What these screens never ask for.
struct Unused : CommandRunner,
                ApplicationWorkspace,
                ApplicationList,
                MonochromeFilter,
                ByteCountFormatter {
    void runCommand(const std::string&) override { ADD_FAILURE(); }
    bool applicationIsInstalled(const std::string&) const override { return false; }
    std::optional<std::string> valueForKey(std::string_view, const std::string&) const override {
        return std::nullopt;
    }
    std::map<std::string, std::string> applications() const override { return {}; }
    std::vector<Entry> entries() const override { return {}; }
    std::optional<std::string> monochromePng(std::string_view, float, float, float) const override {
        return std::nullopt;
    }
    std::string stringFromByteCount(std::int64_t) const override { return {}; }
};

struct Journal : SystemLog {
    void log(const std::string& text) override { lines.push_back(text); }
    std::vector<std::string> lines;
};

} // namespace

struct ColorScreensTest : ::testing::Test {
    ColorScreensTest() {
        files.createDirectoryAtPath(std::filesystem::path(settingsFilePath).parent_path());
    }
    template<typename Screen>
    std::unique_ptr<Screen> loaded(double width = 0) {
        std::unique_ptr<Screen> screen;
        if constexpr (std::is_same_v<Screen, PrefsViewController>)
            screen = std::make_unique<Screen>(platform, notifications);
        else
            screen = std::make_unique<Screen>(platform);
        screen->setModalStack(&modals);
        if (width > 0)
            screen->viewDidLayout(width, 700);
        screen->loadViewIfNeeded();
        return screen;
    }
    /// The picker on top of all; null when something else or nothing is there.
    QZColorPickerViewController* picker() const {
        const auto* navigation = qobject_cast<NavigationController*>(modals.topmost());
        return navigation
                   ? qobject_cast<QZColorPickerViewController*>(navigation->topViewController())
                   : nullptr;
    }
    std::optional<PropertyList> setting(std::string_view key) const {
        const auto settings = dictionaryWithContentsOfFile(files, settingsFilePath);
        return settings ? settings->valueForKey(key) : std::nullopt;
    }
    std::array<std::optional<PropertyList>, 3> storedColor() const {
        return {setting("Red"), setting("Green"), setting("Blue")};
    }

    TemporaryFolder folder;
    Unused unused;
    Journal journal;
    UnexpectedDownloads downloader;
    PosixPlatform posix{folder.path()};
    PosixFileManager& files = posix.files;
    const Platform platform = posix.ports({.commands = &unused,
                                           .workspace = &unused,
                                           .applications = &unused,
                                           .monochrome = &unused,
                                           .log = &journal,
                                           .downloader = &downloader});
    NotificationCenter notifications;
    ModalStack modals;
};

TEST_F(ColorScreensTest, TheMainScreenStoresThePickedColor) {
    putFile(folder / std::string(settingsFilePath).substr(1),
            "{customColorToggle = 1; Red = 1; Blue = \"0.2\"; other = kept;}");
    const auto screen = loaded<PrefsViewController>();
    journal.lines.clear();
    screen->tableViewDidSelectRowAtIndexPath(2, 1);
    ASSERT_TRUE(picker());
    EXPECT_EQ(picker()->title(), "Select color");
    EXPECT_EQ(picker()->colors().at(static_cast<std::size_t>(picker()->currentItem())),
              (Color{1, 0, 51 / 255.0, 1}));
    EXPECT_EQ(screen->prefTable.selectedRow(), 1);

    picker()->setColors({{0.2, 0.4, 0.6, 0.5}, {1, 0, 0, 1}});
    QColor swatch;
    std::size_t linesBeforeSwatch = 0;
    QObject::connect(&screen->colorView, &TableViewCell::backgroundColorChanged, [&] {
        linesBeforeSwatch = journal.lines.size();
        swatch = screen->colorView.backgroundColor();
    });
    picker()->collectionViewDidSelectItemAtIndexPath(0, 0);

    const std::vector<std::string> lines{"\nindexPath.row 1 \nindex.section 2 \n",
                                         "Color Selected",
                                         "\n red 0.200000 \n blue 0.600000 \n green 0.400000",
                                         "Adding Object: 0.20000000298023224 - For Key Red",
                                         "Wrote to file successfully",
                                         "Adding Object: 0.4000000059604645 - For Key Green",
                                         "Wrote to file successfully",
                                         "Adding Object: 0.6000000238418579 - For Key Blue",
                                         "Wrote to file successfully"};
    EXPECT_EQ(journal.lines, lines);
    EXPECT_EQ(linesBeforeSwatch, lines.size());
    EXPECT_EQ(swatch.rgb(), qRgb(51, 102, 153));
    EXPECT_EQ(storedColor()[2], PropertyList::real(0.6F));
    EXPECT_EQ(setting("other"), PropertyList::string("kept"));
    EXPECT_FALSE(modals.occupied());
    EXPECT_EQ(screen->prefTable.selectedRow(), -1);
}

TEST_F(ColorScreensTest, TheLastPickWinsAndCancelAndTheSwitchKeepIt) {
    const auto screen = loaded<PrefsViewController>();
    for (const int item : {20, 5, 0}) {
        screen->selectColorTapped();
        picker()->collectionViewDidSelectItemAtIndexPath(0, item);
    }
    const auto black = storedColor();
    EXPECT_EQ(black[0], PropertyList::real(0));

    screen->selectColorTapped();
    picker()->tapLeftBarButton();
    QCoreApplication::processEvents();
    EXPECT_FALSE(modals.occupied());
    screen->colorSwitchChanged(false);
    EXPECT_EQ(storedColor(), black);
    EXPECT_EQ(setting("customColorToggle"), PropertyList::boolean(false));
}

TEST_F(ColorScreensTest, TheTestButtonSpansAnyScreen) {
    for (const auto& [width, x] : {std::pair{0.0, -1500.0}, {390.0, -1305.0}, {1024.0, -988.0}}) {
        const auto screen = loaded<FirstViewController>(width);
        screen->viewDidLayout(700, 700);
        EXPECT_EQ(screen->copyButton()->frame, QRectF(x, 230, 3000, 40)) << width;
    }
}

TEST_F(ColorScreensTest, ThePickerOfTheTestReachesNobody) {
    const auto screen = loaded<FirstViewController>();
    screen->selectColorTapped();
    const QPointer first = picker();
    ASSERT_TRUE(first);
    EXPECT_FALSE(first->delegate());
    EXPECT_FALSE(first->collectionViewLayout());
    EXPECT_EQ(first->title(), "");
    first->collectionViewDidSelectItemAtIndexPath(0, 20);
    first->tapLeftBarButton();
    QCoreApplication::processEvents();
    EXPECT_EQ(picker(), first);
    EXPECT_EQ(screen->copyButton()->backgroundColor(), QColor(247, 247, 247));

    screen->selectColorTapped();
    EXPECT_NE(picker(), first);
    modals.topmost()->dismissBySystem();
    EXPECT_EQ(picker(), first);
    modals.topmost()->dismissBySystem();
    EXPECT_FALSE(modals.occupied());
}

TEST_F(ColorScreensTest, TheTestScreenAnswersAPickerAsItsDelegate) {
    const auto screen = loaded<FirstViewController>();
    for (const bool picks : {true, false}) {
        auto own = QZColorPickerViewController::pickerWithDelegate(*screen);
        screen->presentViewController(std::make_unique<NavigationController>(std::move(own)), true);
        EXPECT_EQ(picker()->title(), "Select color");
        if (picks)
            picker()->collectionViewDidSelectItemAtIndexPath(0, 20);
        else
            picker()->cancelTapped();
        EXPECT_FALSE(modals.occupied());
        EXPECT_EQ(screen->copyButton()->backgroundColor(), QColor(255, 0, 0));
    }
    EXPECT_FALSE(files.fileExistsAtPath(settingsFilePath));
}

TEST_F(ColorScreensTest, TheTestAlertClosesByEitherButton) {
    const auto screen = loaded<FirstViewController>();
    for (const int button : {0, 1}) {
        screen->showAlert();
        auto* alert = qobject_cast<AlertController*>(modals.topmost());
        ASSERT_TRUE(alert);
        EXPECT_EQ(alert->title(), "AlertView");
        EXPECT_EQ(alert->message(), "");
        EXPECT_EQ(alert->buttons(), QStringList({"GO", "Cancel"}));
        alert->press(button);
        QCoreApplication::processEvents();
        EXPECT_FALSE(modals.occupied()) << button;
    }
}

} // namespace dubrix
