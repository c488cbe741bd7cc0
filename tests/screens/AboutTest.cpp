#include "formats/lists/PropertyList.h"
#include "platform/HelpPages.h"
#include "platform/SystemLog.h"
#include "platform/UrlOpener.h"
#include "screens/about/AboutTableViewController.h"
#include "screens/about/QVWebViewController.h"
#include "screens/containers/NavigationController.h"
#include "screens/containers/TabBarController.h"
#include "tests/support/LoopbackServer.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>
#include <gtest/gtest.h>
#include <set>
#include <unistd.h>

Q_IMPORT_QML_PLUGIN(DubrixPlugin)

namespace dubrix {
namespace {

using Texts = std::vector<std::string>;

/// The about screen in its tab, and what it asks of its platform.
class AboutTest : public testing::Test, HelpPages, UrlOpener, SystemLog {
protected:
    AboutTest() {
        information.setValueForKey("CFBundleVersion", PropertyList::string("57"));
        auto screen = std::make_unique<AboutTableViewController>(
            AboutServices{*this, *this, *this, information});
        about = screen.get();
        about->setTitle(QStringLiteral("About"));
        auto root = std::make_unique<NavigationController>(std::move(screen));
        navigation = root.get();
        tabs.addTab(std::move(root), QStringLiteral("About"), {}, {});
        tabs.loadViewIfNeeded();
    }
    std::string siteAddress() override { return site; }
    bool canOpenURL(const std::string& address) const override {
        return installed.contains(address);
    }
    void openURL(const std::string& address) override { opened.push_back(address); }
    void log(const std::string& text) override { lines.push_back(text); }
    /// The page that a row opens, in short; nothing when it opens none.
    std::string pageOf(int row) {
        about->tableViewDidSelectRowAtIndexPath(1, row);
        auto* page = qobject_cast<QVWebViewController*>(navigation->topViewController());
        if (!page)
            return "";
        EXPECT_TRUE(page->activityIndicator->animating() && !page->webView->bounces());
        page->webViewDidFinishLoad();
        EXPECT_TRUE(page->activityIndicator->hidden() && !page->activityIndicator->animating());
        EXPECT_TRUE(tabs.tabBarHidden());
        EXPECT_EQ(navigation->backTitle(), "About");
        EXPECT_EQ(about->aboutTable.selectedRow(), row) << "below its page";
        const QString text = page->title() + " " + page->webView->request().toString();
        navigation->popViewController();
        EXPECT_FALSE(tabs.tabBarHidden() || navigation->canGoBack());
        EXPECT_EQ(about->aboutTable.selectedRow(), -1);
        return text.toStdString();
    }

    std::string site = "http://help.example.org:8080";
    std::set<std::string> installed;
    Texts opened, lines;
    PropertyList information = PropertyList::dictionary();
    TabBarController tabs;
    NavigationController* navigation = nullptr;
    AboutTableViewController* about = nullptr;
};

TEST_F(AboutTest, ItsRowsLeadOutAndToHelpPages) {
    EXPECT_EQ(about->versionString.text(), "Version 57");
    installed = {"tweetbot:", "twitterrific:", "tweetings:", "twitter:", "https:"};
    for (const std::string client : {"tweetbot:", "twitterrific:", "tweetings:", "twitter:", ""}) {
        about->tableViewDidSelectRowAtIndexPath(0, 0);
        EXPECT_EQ(about->aboutTable.selectedSection(), -1);
        EXPECT_FALSE(about->aboutTable.selectionAnimated());
        installed.erase(client); // the next in the order of preference
    }
    about->tableViewDidSelectRowAtIndexPath(0, 1);
    EXPECT_EQ(about->aboutTable.selectedSection(), -1);
    about->mail();
    EXPECT_EQ(
        opened,
        (Texts{"tweetbot:///user_profile/iQ7r2m", "twitterrific:///profile?screen_name=iQ7r2m",
               "tweetings:///user?screen_name=iQ7r2m", "twitter://user?screen_name=iQ7r2m",
               "https://mobile.social.example.org/iQ7r2m",
               "https://payments.example.org/cgi-bin/webscr?cmd=_s-xclick&"
               "hosted_button_id=DUBRIXDONATE1",
               "mailto:support%40example.org?subject=Lorvane%20(1.2)%20Support"}));
    opened.clear();

    const std::string pages = site + "/pages/dubrix-";
    EXPECT_EQ(pageOf(0), "Instructions " + pages + "instructions.php");
    EXPECT_EQ(pageOf(1), "Changelog " + pages + "changelog.php");
    EXPECT_EQ(pageOf(2), "Credits & FAQ " + pages + "faqcredits.php");
    site.clear();
    EXPECT_EQ(pageOf(0), "Instructions ") << "which never loads";
    lines.clear();
    EXPECT_EQ(pageOf(3), "");
    EXPECT_EQ(lines, Texts{"\nindexPath.row 3 \nindex.section 1 \n"});
    EXPECT_EQ(opened, Texts());
    EXPECT_EQ(std::tuple(about->numberOfSectionsInTableView(),
                         about->tableViewNumberOfRowsInSection(0),
                         about->tableViewNumberOfRowsInSection(1),
                         about->tableViewNumberOfRowsInSection(2)),
              std::tuple(2, 2, 3, 0));
}

/// A page's screen in a window of its own.
struct ShownPage {
    explicit ShownPage(const std::string& address) {
        controller.setURL(address, "Instructions");
        controller.loadViewIfNeeded();
        QObject::connect(controller.activityIndicator.get(), &ActivityIndicatorView::changed,
                         [this] { ++changes; });
        view.engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
        view.setInitialProperties(
            {{QStringLiteral("controller"), QVariant::fromValue(&controller)}});
        view.setSource(QUrl(QStringLiteral("qrc:/qt/qml/Dubrix/WebPageView.qml")));
        view.resize(320, 480);
        view.show();
    }
    bool spins() const {
        return controller.activityIndicator->animating() && !controller.activityIndicator->hidden();
    }
    /// The web view; null until it is made.
    QQuickItem* page() const {
        for (QQuickItem* item : view.rootObject()->findChildren<QQuickItem*>())
            if (item->property("failed").isValid())
                return item;
        return nullptr;
    }
    /// Whether the page is seen, the spinner over it or not.
    bool isSeen() const { return page() && page()->opacity() > 0; }

    QVWebViewController controller;
    int changes = 0; ///< of the spinner
    QQuickView view; // goes before what it draws
};

TEST(WebPage, SpinsOnceUntilThereIsSomethingToSee) {
    QQmlEngine engine;
    QQmlComponent any(&engine);
    any.setData("import QtWebView\nWebView {}", QUrl());
    if (any.isError())
        GTEST_SKIP() << "no web view here: " << any.errorString().toStdString();
    LoopbackServer server;
    server.Get("/quick", [](const httplib::Request&, httplib::Response& response) {
        response.set_content("<p>quick</p>", "text/html");
    });
    server.Get("/halfway", [](const httplib::Request&, httplib::Response& response) {
        response.set_content("<iframe src='/silent'></iframe><iframe src='/quick'></iframe>",
                             "text/html");
    });
    server.Get("/silent", [&](const httplib::Request&, httplib::Response&) { server.holdBack(); });
    server.start();
    constexpr int patience = 30'000;
    {
        auto gone = std::make_unique<LoopbackServer>();
        gone->start();
        const std::string refused = gone->address("/quick");
        gone.reset();
        const ShownPage nothing(refused);
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return nothing.page() && nothing.page()->property("failed").toBool(); },
            patience));
        EXPECT_TRUE(nothing.spins() && nothing.changes == 0);
        EXPECT_FALSE(nothing.isSeen()) << "the engine's own words on the failure";
    }
    {
        const ShownPage quick(server.address("/quick"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return !quick.spins(); }, patience));
        EXPECT_TRUE(quick.isSeen());
    }
    const ShownPage halfway(server.address("/halfway"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !halfway.spins(); }, patience));
    EXPECT_TRUE(server.holdsOneBack()) << "one frame has loaded, another has not";
    EXPECT_TRUE(halfway.page()->property("loading").toBool() && halfway.isSeen());
}

} // namespace
} // namespace dubrix

/// The web engine deletes a part of itself by a size that is not the part's. Whole call stacks tell
/// whose memory it is that it keeps.
extern "C" const char* __asan_default_options() {
    return "new_delete_type_mismatch=0:fast_unwind_on_malloc=0";
}

int main(int count, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    if (::geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QGuiApplication application(count, arguments);
    testing::InitGoogleTest(&count, arguments);
    return RUN_ALL_TESTS();
}
