#include "screens/about/QVWebViewController.h"
#include "tests/support/LoopbackServer.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>
#include <gtest/gtest.h>
#include <unistd.h>

Q_IMPORT_QML_PLUGIN(DubrixPlugin)

namespace dubrix {
namespace {

using httplib::Request;
using httplib::Response;

/// The screen with its layout in a window, and a server for its page.
class WebPageTest : public testing::Test {
protected:
    void SetUp() override {
        view.engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
        QQmlComponent engine(view.engine());
        engine.setData("import QtWebView\nWebView {}", QUrl());
        if (engine.isError())
            GTEST_SKIP() << "no web view here: " << engine.errorString().toStdString();
        server.Get("/quick", [this](const Request& request, Response& response) {
            askedAgain = askedAgain || request.has_param("again");
            response.set_content("<p>quick</p>", "text/html");
        });
        server.Get("/frames", [](const Request&, Response& response) {
            response.set_content("<iframe src='/quick'></iframe><iframe src='/quick'></iframe>",
                                 "text/html");
        });
        server.Get("/halfway", [](const Request&, Response& response) {
            response.set_content("<iframe src='/silent'></iframe><iframe src='/quick'></iframe>",
                                 "text/html");
        });
        server.Get("/silent", [this](const Request&, Response&) { server.holdBack(); });
        server.start();
    }

    void show(const std::string& address) {
        controller.setURL(address, "Instructions");
        controller.loadViewIfNeeded();
        QObject::connect(controller.activityIndicator.get(), &ActivityIndicatorView::changed,
                         [this] { ++changes; });
        view.setInitialProperties(
            {{QStringLiteral("controller"), QVariant::fromValue(&controller)}});
        view.setSource(QUrl(QStringLiteral("qrc:/qt/qml/Dubrix/WebPageView.qml")));
        view.resize(320, 480);
        view.show();
    }
    bool spins() const {
        return controller.activityIndicator->animating() && !controller.activityIndicator->hidden();
    }
    /// The web view, once it is made.
    QQuickItem* page() const {
        for (QQuickItem* item : view.rootObject()->findChildren<QQuickItem*>())
            if (item->property("failed").isValid())
                return item;
        return nullptr;
    }
    /// Whether the page is seen, the spinner over it or not.
    bool pageIsSeen() const { return page() && page()->opacity() > 0; }

    std::atomic<bool> askedAgain = false;
    LoopbackServer server;
    QVWebViewController controller;
    int changes = 0; ///< of the spinner
    QQuickView view; // goes before what it draws
};

constexpr int patience = 30'000;

TEST_F(WebPageTest, PutsTheSpinnerAwayWhenAQuickPageHasLoaded) {
    show(server.address("/quick"));
    EXPECT_TRUE(spins());
    ASSERT_TRUE(QTest::qWaitFor([this] { return !spins(); }, patience));
    EXPECT_FALSE(controller.activityIndicator->animating());
    EXPECT_TRUE(controller.activityIndicator->hidden());
    EXPECT_TRUE(pageIsSeen());
}

TEST_F(WebPageTest, PutsTheSpinnerAwayOnceForAPageOfSeveralFramesAndAllThatFollow) {
    show(server.address("/frames"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return !spins(); }, patience));
    const int changesOfTheFirstLoad = changes;
    page()->setProperty("url", QUrl(QString::fromStdString(server.address("/quick?again"))));
    ASSERT_TRUE(QTest::qWaitFor(
        [this] { return askedAgain && !page()->property("loading").toBool(); }, patience));
    EXPECT_EQ(changes, changesOfTheFirstLoad);
    EXPECT_FALSE(spins());
}

TEST_F(WebPageTest, PutsTheSpinnerAwayAtTheFirstFrameThatHasLoaded) {
    show(server.address("/halfway"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return !spins(); }, patience));
    EXPECT_TRUE(server.holdsOneBack()) << "another has not";
    EXPECT_TRUE(page()->property("loading").toBool());
    EXPECT_TRUE(pageIsSeen());
}

TEST_F(WebPageTest, SpinsOnWhileThePageDoesNotAnswer) {
    show(server.address("/silent"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return server.holdsOneBack(); }, patience));
    EXPECT_TRUE(spins());
    EXPECT_FALSE(pageIsSeen());
}

TEST_F(WebPageTest, SpinsOnOverNothingWhenTheConnectionIsRefused) {
    std::string address;
    {
        LoopbackServer gone;
        gone.start();
        address = gone.address("/quick");
    }
    show(address);
    ASSERT_TRUE(QTest::qWaitFor([this] { return page() && page()->property("failed").toBool(); },
                                patience));
    EXPECT_TRUE(spins());
    EXPECT_EQ(changes, 0);
    EXPECT_FALSE(pageIsSeen()) << "the engine's own words on the failure are not shown";
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
