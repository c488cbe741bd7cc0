#include "controls/ApplicationIconProvider.h"
#include "tests/screens/PickerDevice.h"
#include "tests/support/StoredText.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QQuickView>
#include <QSignalSpy>
#include <QTest>
#include <atomic>

Q_IMPORT_QML_PLUGIN(DubrixPlugin)

namespace dubrix {

namespace {

/// Red squares for bundles whose path ends in "red"; counts what it is asked.
struct CountedIcons {
    std::optional<RgbaImage> operator()(const std::string& path, unsigned) const {
        ++asked;
        if (!path.ends_with("red"))
            return std::nullopt;
        RgbaImage picture(40, 20);
        std::fill_n(picture.bytes.get(), 40 * 20 * 4, std::uint8_t{0});
        for (std::size_t pixel = 0; pixel < 40 * 20; ++pixel)
            picture.bytes[pixel * 4] = picture.bytes[pixel * 4 + 3] = 255;
        return picture;
    }
    mutable std::atomic<int> asked = 0;
};

} // namespace

TEST(ApplicationIconProviderTest, DrawsRoundSquaresAndKeepsThem) {
    const CountedIcons icons;
    ApplicationIconProvider provider(std::cref(icons));
    const QImage red = provider.icon("/some/red", 58);
    EXPECT_EQ(red.size(), QSize(58, 58));
    EXPECT_EQ(red.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(red.pixelColor(29, 29), QColor(255, 0, 0));
    const QImage placeholder = provider.icon("/none", 58);
    EXPECT_EQ(placeholder.size(), QSize(58, 58));
    EXPECT_EQ(placeholder.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(placeholder.pixelColor(29, 8).alpha(), 255);
    EXPECT_EQ(icons.asked, 2);
    EXPECT_EQ(provider.icon("/some/red", 58), red);
    EXPECT_EQ(icons.asked, 2);
    EXPECT_EQ(provider.icon("/some/red", 87).width(), 87);
    EXPECT_EQ(icons.asked, 3);
    // More than can be kept sends the oldest away.
    for (int other = 0; other < ApplicationIconProvider::keptKilobytes / 1024; ++other)
        provider.icon("/other" + std::to_string(other), 512);
    const int before = icons.asked;
    EXPECT_EQ(provider.icon("/some/red", 58), red);
    EXPECT_EQ(icons.asked, before + 1);
}

TEST(ApplicationIconProviderTest, AnswersFromAnotherThread) {
    const CountedIcons icons;
    ApplicationIconProvider provider(std::cref(icons));
    const std::string odd = "/Ein Pfad/100 % \xff?#/red"; // any bytes of a path survive
    const QString address = ApplicationIconProvider::addressFor(odd);
    const QString id = QUrl(address).path().mid(1);
    const std::unique_ptr<QQuickImageResponse> response(
        provider.requestImageResponse(id, QSize(58, 58)));
    QSignalSpy finished(response.get(), &QQuickImageResponse::finished);
    ASSERT_TRUE(finished.count() > 0 || finished.wait());
    const std::unique_ptr<QQuickTextureFactory> texture(response->textureFactory());
    ASSERT_TRUE(texture);
    EXPECT_EQ(texture->image().pixelColor(29, 29), QColor(255, 0, 0));
}

/// The picker as it is drawn, with three applications.
class AppListViewTest : public PickerDevice {
protected:
    void SetUp() override {
        install("com.acme.b", "Bravo");
        install("com.acme.a", "Alpha");
        install("org.other", "A name as long as sixty characters, which no window has room for");
        storeText(files, log, "bundleID", "com.acme.b");
        picker.loadViewIfNeeded();
        view.engine()->addImportPath("qrc:/qt/qml");
        view.engine()->addImageProvider(QLatin1String(ApplicationIconProvider::name),
                                        new ApplicationIconProvider(std::cref(icons)));
        view.setInitialProperties({{"controller", QVariant::fromValue(&picker)}});
        view.setResizeMode(QQuickView::SizeRootObjectToView);
        view.resize(320, 480);
        view.setSource(QUrl("qrc:/qt/qml/Dubrix/AppListView.qml"));
        ASSERT_TRUE(view.rootObject());
        view.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
        view.rootObject()->forceActiveFocus();
    }
    QString focused() const {
        QAccessibleInterface* element =
            QAccessible::queryAccessibleInterface(view.activeFocusItem());
        return element ? element->text(QAccessible::Name) : QString();
    }
    /// Names of everything in the window with this role; a star for what is checked.
    QStringList named(QAccessible::Role role) {
        QStringList names;
        collect(QAccessible::queryAccessibleInterface(&view), role, names);
        names.sort();
        return names;
    }
    static void collect(QAccessibleInterface* element, QAccessible::Role role, QStringList& names) {
        if (!element || element->state().invisible)
            return;
        if (element->role() == role)
            names += element->text(QAccessible::Name) + (element->state().checked ? " *" : "");
        for (int child = 0; child < element->childCount(); ++child)
            collect(element->child(child), role, names);
    }

    const CountedIcons icons;
    AppListSampleViewController picker{platform, notifications,
                                       ALApplicationTableDataSource::Loading::AtOnce};
    QQuickView view;
};

TEST_F(AppListViewTest, NamesItsRowsAndIsUsedByKeyboard) {
    EXPECT_EQ(named(QAccessible::ListItem),
              QStringList({"A name as long as sixty characters, which no window has room for",
                           "Alpha", "Bravo *"}));
    EXPECT_TRUE(
        named(QAccessible::Heading).contains("Select only original app and not a duplicate"));
    EXPECT_EQ(focused(), "Bravo") << "the chosen one";
    QTest::keyClick(&view, Qt::Key_Home);
    EXPECT_EQ(focused(), "A name as long as sixty characters, which no window has room for");
    QTest::keyClick(&view, Qt::Key_End);
    EXPECT_EQ(focused(), "Bravo");
    QTest::keyClick(&view, Qt::Key_Up);
    EXPECT_EQ(focused(), "Alpha");
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_EQ(storedText(files, log, "bundleID"), "com.acme.a");
    QTest::keyClick(&view, Qt::Key_Home);
    QTest::keyClick(&view, Qt::Key_Up);
    EXPECT_EQ(focused(), "Search");
    QTest::keyClick(&view, Qt::Key_Tab);
    EXPECT_EQ(focused(), "A name as long as sixty characters, which no window has room for");
}

TEST_F(AppListViewTest, LettersSearchAndEscapeClears) {
    QTest::keyClick(&view, 'b');
    EXPECT_EQ(focused(), "Search");
    QTest::keyClick(&view, 'r');
    EXPECT_EQ(picker.searchField.text(), "br");
    EXPECT_EQ(named(QAccessible::ListItem), QStringList("Bravo *"));
    EXPECT_EQ(named(QAccessible::Button), QStringList("Clear search"));
    QTest::keyClick(&view, 'x');
    EXPECT_TRUE(named(QAccessible::Heading).contains("No Results"));
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_EQ(picker.searchField.text(), "");
    EXPECT_EQ(named(QAccessible::ListItem).size(), 3);
    EXPECT_EQ(named(QAccessible::Button), QStringList());
    QTest::keyClick(&view, 'b');
    QTest::keyClick(&view, Qt::Key_Down);
    QTest::keyClick(&view, Qt::Key_Return);
    EXPECT_EQ(storedText(files, log, "bundleID"), "com.acme.b");
}

} // namespace dubrix
