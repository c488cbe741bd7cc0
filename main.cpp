#include "device/desk/Desk.h"
#include "driver/ScriptPlayer.h"
#include "looks/Appearance.h"
#include "looks/ApplicationIconProvider.h"
#include "looks/WindowArguments.h"
#include "looks/WindowPlace.h"
#include "network/NetworkServices.h"
#include "overlays/ProgressHUD.h"
#include "platform/linux/DesktopUrlOpener.h"
#include "platform/linux/FileStyleByteCount.h"
#include "platform/linux/LinuxApplicationIcons.h"
#include "platform/linux/LinuxApplicationList.h"
#include "platform/linux/LinuxApplicationWorkspace.h"
#include "platform/linux/LinuxCommandRunner.h"
#include "platform/linux/LinuxDeviceClaim.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxMonochromeFilter.h"
#include "platform/linux/LinuxSystemLog.h"
#include "screens/AboutTableViewController.h"
#include "screens/AppDelegate.h"
#include "screens/ArchiveDrop.h"
#include "screens/InterfaceLayout.h"
#include "screens/ModalStack.h"
#include "screens/NotificationCenter.h"
#include "screens/QuickOverlayStage.h"
#include "screens/TabBarController.h"
#include "screens/TemplateImageProvider.h"

#include <QCommandLineParser>
#include <QFile>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QPalette>
#include <QQmlApplicationEngine>
#include <QQmlExtensionPlugin>
#include <QQuickWindow>
#include <fcntl.h>
#include <future>
#include <memory>
#include <sys/prctl.h>

Q_IMPORT_QML_PLUGIN(DubrixPlugin)

namespace {

using namespace dubrix;

struct Arguments {
    std::filesystem::path root;
    /// The descriptors of a driver's script, of its pictures and of the answers to them.
    QList<int> drive;
    /// The descriptors of the launcher's answers and of requests to it.
    QList<int> desk;
    /// Whether the window leaves room for the home screen on its left.
    bool beside = false;
    /// What commands must not do, as a file; empty for no such limits.
    std::filesystem::path commandFilter;
    /// "light", "dark", or empty for what the platform's theme says.
    QString appearance;
    /// The window's size; empty for the layout's own.
    QSize size;
};

/// Keeps the driver's and the desk's descriptors from the commands that the engine runs, since what
/// goes into them is acted upon on the desktop: closed in them, and not to be had through /proc or
/// by tracing this process either.
void keepFromCommands(const QList<int>& descriptors) {
    for (const int descriptor : descriptors)
        ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    if (!descriptors.isEmpty())
        ::prctl(PR_SET_DUMPABLE, 0);
}

Arguments parseArguments(const QGuiApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("The application itself. Start it with the command 'dubrix'."));
    parser.addHelpOption();
    const QCommandLineOption root(QStringLiteral("root"),
                                  QStringLiteral("The device's root folder."),
                                  QStringLiteral("folder"), QStringLiteral("/"));
    const QCommandLineOption drive(
        QStringLiteral("drive"),
        QStringLiteral("Act out the script that the first descriptor reads; pictures go to the "
                       "second, answers come from the third."),
        QStringLiteral("script:pictures:answers"));
    const QCommandLineOption appearance(QStringLiteral("appearance"),
                                        QStringLiteral("How the windows look: light or dark."),
                                        QStringLiteral("appearance"));
    const QCommandLineOption size(QStringLiteral("size"), QStringLiteral("The window's size."),
                                  QStringLiteral("WIDTHxHEIGHT"));
    const QCommandLineOption desk(
        QStringLiteral("desk"),
        QStringLiteral("Descriptors of the launcher's answers and of requests to it."),
        QStringLiteral("answers:requests"));
    const QCommandLineOption beside(QStringLiteral("beside"),
                                    QStringLiteral("Stand on the right of the home screen."));
    const QCommandLineOption filter(
        QStringLiteral("command-filter"),
        QStringLiteral("The system-call filter of the commands that the application runs."),
        QStringLiteral("file"));
    parser.addOptions({root, drive, appearance, size, desk, beside, filter});
    parser.process(application);

    Arguments arguments{.root = parser.value(root).toStdString(),
                        .drive = descriptorsIn(parser.value(drive)),
                        .desk = descriptorsIn(parser.value(desk)),
                        .beside = parser.isSet(beside),
                        .commandFilter = parser.value(filter).toStdString(),
                        .appearance = parser.value(appearance),
                        .size = sizeIn(parser.value(size))};
    keepFromCommands(arguments.drive + arguments.desk);
    if ((parser.isSet(drive) && arguments.drive.size() != 3) ||
        (parser.isSet(desk) && arguments.desk.size() != 2))
        parser.showHelp(2);
    return arguments;
}

/// What the application's own bundle says of it.
PropertyList informationDictionary() {
    QFile file(QStringLiteral(":/resources/Dubrix.app/Info.plist"));
    if (!file.open(QIODevice::ReadOnly))
        return PropertyList::dictionary();
    return PropertyList::parse(file.readAll().toStdString()).value_or(PropertyList::dictionary());
}

/// For the web engine, which is loaded when the first page is opened: pages look like the windows,
/// whose palette it does not follow by itself, and it keeps its parameters to itself.
void prepareWebPages() {
    QLoggingCategory::setFilterRules(QStringLiteral("qt.webenginecontext*=false"));
    if (QGuiApplication::palette().window().color().lightnessF() < 0.5F)
        qputenv("QTWEBENGINE_CHROMIUM_FLAGS",
                qgetenv("QTWEBENGINE_CHROMIUM_FLAGS") + " --blink-settings=preferredColorScheme=0");
}

/// Has the list of applications read when the first frame is there, so that the first picker opens
/// as fast as later ones; only what has changed is read again. The list outlives `reading`, whose
/// end waits.
void readAhead(QQuickWindow& window, const ApplicationList& applications,
               std::future<void>& reading) {
    const auto read = [&applications, &reading] {
        reading = std::async(std::launch::async, [&applications] { applications.entries(); });
    };
    QObject::connect(
        &window, &QQuickWindow::frameSwapped, &window, read,
        static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
}

/// Plays the driver's script on the window; the application ends with it.
std::unique_ptr<ScriptPlayer> playScript(QQuickWindow& window, const QList<int>& descriptors) {
    auto player = std::make_unique<ScriptPlayer>(window, descriptors[0],
                                                 ShotPipe(descriptors[1], descriptors[2]));
    QObject::connect(player.get(), &ScriptPlayer::finished, &window,
                     [](int status) { QCoreApplication::exit(status); });
    player->play();
    return player;
}

/// The launcher, which installs what is dropped on the window.
std::unique_ptr<Desk> openDesk(const QList<int>& descriptors, ArchiveDrop& drops) {
    auto desk = std::make_unique<Desk>(descriptors[0], descriptors[1]);
    QObject::connect(&drops, &ArchiveDrop::installationAsked, desk.get(),
                     [desk = desk.get()](const QByteArray& path) { desk->ask("install", path); });
    QObject::connect(desk.get(), &Desk::progressed, &drops, &ArchiveDrop::progressed);
    QObject::connect(desk.get(), &Desk::answered, &drops, &ArchiveDrop::answered);
    return desk;
}

} // namespace

int main(int argc, char** argv) {
    // For the web engine, which cannot ask for it any more when it is loaded with the first page.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("dubrix"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Dubrix"));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.dubrix.Dubrix"));
    const Arguments arguments = parseArguments(application);
    chooseFont();
    chooseAppearance(arguments.appearance);
    prepareWebPages();

    const std::filesystem::path programs = QCoreApplication::applicationDirPath().toStdString();
    const auto confinement = CommandConfinement::read(arguments.commandFilter);
    if (!confinement && !arguments.commandFilter.empty()) {
        qCritical("The commands' system-call filter cannot be read.");
        return 1;
    }
    LinuxCommandRunner commands(arguments.root, programs / "device-paths.bash", confinement);
    LinuxFileManager files(arguments.root);
    LinuxApplicationWorkspace workspace(arguments.root);
    LinuxApplicationList applications(arguments.root);
    LinuxApplicationIcons icons(arguments.root);
    LinuxMonochromeFilter monochrome;
    FileStyleByteCount byteCounts;
    LinuxSystemLog log;
    LinuxDeviceClaim device(arguments.root);
    NetworkServices network(programs / "dubrix-network.so", log);
    const Platform platform{commands,   files, workspace, applications, monochrome,
                            byteCounts, log,   network,   device};
    DesktopUrlOpener urls(arguments.root);
    const AboutServices about{log, urls, network, informationDictionary()};

    QuickOverlayStage stage;
    ProgressHUD::useStage(stage);
    NotificationCenter notifications;
    ModalStack modals;
    AppDelegate delegate;
    delegate.window.rootViewController =
        makeInterfaceLayout(platform, notifications, about, modals);
    if (!delegate.applicationDidFinishLaunchingWithOptions())
        return 1;
    delegate.window.rootViewController->loadViewIfNeeded();

    int status = 1;
    {
        ArchiveDrop drops;
        std::unique_ptr<Desk> desk;
        if (!arguments.desk.isEmpty())
            desk = openDesk(arguments.desk, drops);
        QQmlApplicationEngine engine;
        engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
        engine.addImageProvider(QStringLiteral("template"), new TemplateImageProvider);
        engine.addImageProvider(
            QLatin1String(ApplicationIconProvider::name),
            new ApplicationIconProvider([&icons](const std::string& bundlePath, unsigned pixels) {
                return icons.iconOfBundle(bundlePath, pixels);
            }));
        engine.setInitialProperties(
            {{QStringLiteral("root"),
              QVariant::fromValue(delegate.window.rootViewController.get())},
             {QStringLiteral("stage"), QVariant::fromValue(&stage)},
             {QStringLiteral("drops"), QVariant::fromValue(desk ? &drops : nullptr)}});
        engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Dubrix/Main.qml")));
        if (engine.rootObjects().isEmpty())
            return 1;
        auto& window = *qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst());
        if (!arguments.size.isEmpty())
            window.resize(arguments.size);
        if (arguments.beside)
            standBeside(window, Side::Right);
        if (desk)
            QObject::connect(desk.get(), &Desk::raiseAsked, &window,
                             [&window] { bringToFront(window); });
        std::future<void> reading;
        readAhead(window, applications, reading);
        std::unique_ptr<ScriptPlayer> player;
        if (!arguments.drive.isEmpty())
            player = playScript(window, arguments.drive);
        status = QGuiApplication::exec();
        delegate.applicationWillTerminate();
    }
    ProgressHUD::withdrawStage();
    return status;
}
