#include "screens/about/QVWebViewController.h"
#include "tests/support/LoopbackServer.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QQuickView>
#include <QTimer>
#include <gtest/gtest.h>

Q_IMPORT_QML_PLUGIN(DubrixPlugin)

namespace dubrix {
namespace {

/// Until then. The web engine does one thing in each turn of the event loop, which must not sleep.
bool until(const std::function<bool()>& condition) {
    QEventLoop loop;
    QTimer look;
    look.callOnTimeout([&] {
        if (condition())
            loop.quit();
    });
    look.start(5);
    QTimer::singleShot(30'000, &loop, &QEventLoop::quit);
    loop.exec();
    return condition();
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
    {
        auto gone = std::make_unique<LoopbackServer>();
        gone->start();
        const std::string refused = gone->address("/quick");
        gone.reset();
        const ShownPage nothing(refused);
        ASSERT_TRUE(
            until([&] { return nothing.page() && nothing.page()->property("failed").toBool(); }));
        EXPECT_TRUE(nothing.spins() && nothing.changes == 0);
        EXPECT_FALSE(nothing.page()->opacity() > 0) << "the engine's own words on the failure";
    }
    {
        const ShownPage quick(server.address("/quick"));
        ASSERT_TRUE(until([&] { return !quick.spins(); }));
        EXPECT_EQ(quick.page()->opacity(), 1);
    }
    const ShownPage halfway(server.address("/halfway"));
    ASSERT_TRUE(until([&] { return !halfway.spins(); }));
    EXPECT_TRUE(server.holdsOneBack) << "one frame has loaded, another has not";
    EXPECT_TRUE(halfway.page()->property("loading").toBool() && halfway.page()->opacity() == 1);
}

} // namespace
} // namespace dubrix

/// The web engine deletes a part of itself by a size that is not the part's. Whole call stacks tell
/// whose memory it is that it keeps.
extern "C" const char* __asan_default_options() {
    return "new_delete_type_mismatch=0:fast_unwind_on_malloc=0";
}
