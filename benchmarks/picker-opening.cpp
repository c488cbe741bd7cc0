#include "controls/ApplicationIconProvider.h"
#include "formats/lists/PropertyList.h"
#include "network/NetworkServices.h"
#include "platform/desktop/DesktopUrlOpener.h"
#include "platform/desktop/PaintingPlatform.h"
#include "platform/posix/PosixApplications.h"
#include "platform/posix/PosixPlatform.h"
#include "screens/InterfaceLayout.h"
#include "screens/NotificationCenter.h"
#include "screens/about/AboutTableViewController.h"
#include "screens/applications/AppListSampleViewController.h"
#include "screens/containers/ModalStack.h"
#include "screens/containers/NavigationController.h"
#include "screens/containers/TabBarController.h"
#include "screens/containers/TemplateImageProvider.h"
#include "screens/overlay/QuickOverlayStage.h"
#include "screens/prefs/PrefsViewController.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlExtensionPlugin>
#include <QQmlListReference>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>
#include <algorithm>
#include <fstream>
#include <iostream>

Q_IMPORT_QML_PLUGIN(DubrixPlugin)

// picker-opening ROOT: how long the application picker takes from the tap until its rows are
// drawn, how long frames take while the list is scrolled, and the memory held, for the device
// folder ROOT.

using namespace dubrix;

namespace {

void nextFrame(QQuickWindow& window) {
    QEventLoop loop;
    QObject::connect(&window, &QQuickWindow::frameSwapped, &loop, &QEventLoop::quit,
                     Qt::QueuedConnection);
    window.update();
    loop.exec();
}

void pause(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

QQuickItem* listIn(QQuickItem* item) {
    if (item->inherits("QQuickListView"))
        return item;
    for (QQuickItem* child : item->childItems())
        if (QQuickItem* found = listIn(child))
            return found;
    return nullptr;
}

std::string residentMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS"))
            return line;
    return {};
}

void scroll(QQuickWindow& window, QQuickItem& list) {
    std::vector<double> frames;
    for (int step = 0; step < 200; ++step) {
        QElapsedTimer time;
        time.start();
        list.setProperty("contentY", list.property("contentY").toDouble() + 150);
        nextFrame(window);
        frames.push_back(static_cast<double>(time.nsecsElapsed()) / 1e6);
    }
    std::ranges::sort(frames);
    std::cout << "frame while scrolling: median " << frames[100] << " ms, 95% below " << frames[190]
              << " ms, longest " << frames.back() << " ms\n";
}

void open(QQuickWindow& window, ModalStack& modals, PrefsViewController& screen, bool scrolls) {
    QElapsedTimer time;
    time.start();
    screen.SelectAppTapped();
    const double returned = static_cast<double>(time.nsecsElapsed()) / 1e6;
    auto* navigation = dynamic_cast<NavigationController*>(modals.topmost());
    auto& picker = dynamic_cast<AppListSampleViewController&>(*navigation->topViewController());
    while (picker.dataSource()->isLoading())
        nextFrame(window);
    nextFrame(window);
    const double drawn = static_cast<double>(time.nsecsElapsed()) / 1e6;
    while (time.elapsed() < ModalStack::transitionTime)
        nextFrame(window);
    std::cout << picker.dataSource()->rowCount() << " rows: tap returns after " << returned
              << " ms, rows drawn after " << drawn << " ms, at rest after "
              << static_cast<double>(time.nsecsElapsed()) / 1e6 << " ms\n";
    pause(400);
    if (scrolls)
        scroll(window, *listIn(window.contentItem()));
    picker.cancelTapped();
    pause(400);
}

} // namespace

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    if (argc != 2)
        return 2;
    const std::filesystem::path root = argv[1];
    PosixPlatform posix(root);
    NetworkServices network({}, posix.log);
    PaintingPlatform painting(posix.ports({.downloader = &network}));
    const Platform platform = painting.ports();
    PosixApplicationIcons icons(root);
    NotificationCenter notifications;
    ModalStack modals;
    QuickOverlayStage stage;
    DesktopUrlOpener urls(root);
    const AboutServices about{platform.log, urls, network, PropertyList::dictionary()};
    const auto tabs = makeInterfaceLayout(platform, notifications, about, modals);
    tabs->loadViewIfNeeded();
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("template"), new TemplateImageProvider);
    engine.addImageProvider(
        QLatin1String(ApplicationIconProvider::name),
        new ApplicationIconProvider([&icons](const std::string& bundlePath, unsigned pixels) {
            return icons.iconOfBundle(bundlePath, pixels);
        }));
    engine.setInitialProperties({{QStringLiteral("root"), QVariant::fromValue(tabs.get())},
                                 {QStringLiteral("stage"), QVariant::fromValue(&stage)}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Dubrix/Main.qml")));
    auto& window = *qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst());
    auto& screen = *QQmlListReference(tabs.get(), "viewControllers").at(0);
    pause(300);
    for (int round = 0; round < 5; ++round)
        open(window, modals, dynamic_cast<PrefsViewController&>(screen), round == 4);
    std::cout << residentMemory() << std::endl;
    return 0;
}
