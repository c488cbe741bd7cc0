#include "screens/ApplicationWindow.h"

#include "controls/Appearance.h"
#include "overlays/ProgressHUD.h"
#include "platform/ApplicationList.h"
#include "screens/InterfaceLayout.h"
#include "screens/containers/TabBarController.h"
#include "screens/containers/TemplateImageProvider.h"
#include "windows/WindowProgram.h"

#include <QLoggingCategory>
#include <QPalette>
#include <QQuickWindow>
#include <future>

namespace dubrix {

namespace {

/// For the web engine, which is loaded when the first page is opened: pages look like the windows,
/// whose palette it does not follow by itself, and it keeps its parameters to itself.
void prepareWebPages() {
    QLoggingCategory::setFilterRules(QStringLiteral("qt.webenginecontext*=false"));
    if (Appearance::isDark(QGuiApplication::palette().window().color()))
        qputenv("QTWEBENGINE_CHROMIUM_FLAGS",
                qgetenv("QTWEBENGINE_CHROMIUM_FLAGS") + " --blink-settings=preferredColorScheme=0");
}

} // namespace

ApplicationWindow::ApplicationWindow(WindowProgram& program, const Platform& platform,
                                     const AboutServices& about)
    : program_(program),
      applications_(platform.applications) {
    prepareWebPages();
    ProgressHUD::useStage(stage_);
    if (program.errands() != nullptr)
        drops_ = std::make_unique<ArchiveDrop>(*program.errands());
    delegate_.window.rootViewController =
        makeInterfaceLayout(platform, notifications_, about, modals_);
}

ApplicationWindow::~ApplicationWindow() {
    ProgressHUD::withdrawStage();
}

int ApplicationWindow::run() {
    if (!delegate_.applicationDidFinishLaunchingWithOptions())
        return 1;
    TabBarController& root = *delegate_.window.rootViewController;
    root.loadViewIfNeeded();
    program_.engine().addImageProvider(QStringLiteral("template"), new TemplateImageProvider);
    QQuickWindow* const window =
        program_.open(QStringLiteral("Dubrix/Main.qml"),
                      {{QStringLiteral("root"), QVariant::fromValue(&root)},
                       {QStringLiteral("stage"), QVariant::fromValue(&stage_)},
                       {QStringLiteral("drops"), QVariant::fromValue(drops_.get())}});
    if (window == nullptr)
        return 1;
    // Read when the first frame is there: the first picker opens as fast as later ones.
    std::future<void> reading;
    const auto read = [this, &reading] {
        reading = std::async(std::launch::async, [this] { applications_.entries(); });
    };
    QObject::connect(
        window, &QQuickWindow::frameSwapped, window, read,
        static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
    tellOutcomes(*window);
    program_.playScript(*window);
    const int status = program_.run();
    delegate_.applicationWillTerminate();
    return status;
}

/// The terminal is told what the overlay says of an outcome: then it has an image.
void ApplicationWindow::tellOutcomes(const QQuickWindow& window) {
    const auto tell = [this, told = QString()]() mutable {
        const QString outcome = stage_.imageFile().isEmpty() ? QString() : stage_.message();
        if (outcome != std::exchange(told, outcome) && !outcome.isEmpty())
            program_.say(outcome);
    };
    QObject::connect(&stage_, &QuickOverlayStage::contentsChanged, &window, tell);
}

} // namespace dubrix
