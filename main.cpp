#include "driver/ScriptPlayer.h"
#include "overlays/ProgressHUD.h"
#include "platform/linux/FileStyleByteCount.h"
#include "platform/linux/LinuxApplicationList.h"
#include "platform/linux/LinuxApplicationWorkspace.h"
#include "platform/linux/LinuxCommandRunner.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxMonochromeFilter.h"
#include "platform/linux/LinuxSystemLog.h"
#include "screens/AppDelegate.h"
#include "screens/InterfaceLayout.h"
#include "screens/ModalStack.h"
#include "screens/QuickOverlayStage.h"
#include "screens/TabBarController.h"
#include "screens/TemplateImageProvider.h"

#include <QCommandLineParser>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlExtensionPlugin>
#include <QQuickWindow>
#include <fcntl.h>
#include <memory>


Q_IMPORT_QML_PLUGIN(DubrixPlugin)

namespace {

using namespace dubrix;

struct Arguments {
    std::filesystem::path root;
    /// The descriptors of a driver's script, of its pictures and of the answers to them.
    QList<int> drive;
};

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
    parser.addOptions({root, drive});
    parser.process(application);

    Arguments arguments{.root = parser.value(root).toStdString(), .drive = {}};
    for (const QString& number : parser.value(drive).split(QLatin1Char(':'), Qt::SkipEmptyParts)) {
        const int descriptor = number.toInt();
        ::fcntl(descriptor, F_SETFD, FD_CLOEXEC); // not for the commands that the engine runs
        arguments.drive.append(descriptor);
    }
    if (parser.isSet(drive) && arguments.drive.size() != 3)
        parser.showHelp(2);
    return arguments;
}

void chooseFont() {
    const QString family = QStringLiteral("Inter");
    if (!QFontDatabase::families().contains(family))
        return;
    QFont font = QGuiApplication::font();
    font.setFamily(family);
    QGuiApplication::setFont(font);
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

} // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("dubrix"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Dubrix"));
    const Arguments arguments = parseArguments(application);
    chooseFont();

    const std::filesystem::path programs = QCoreApplication::applicationDirPath().toStdString();
    LinuxCommandRunner commands(arguments.root, programs / "device-paths.bash");
    LinuxFileManager files(arguments.root);
    LinuxApplicationWorkspace workspace(arguments.root);
    LinuxApplicationList applications(arguments.root);
    LinuxMonochromeFilter monochrome;
    FileStyleByteCount byteCounts;
    LinuxSystemLog log;
    const Platform platform{commands, files, workspace, applications, monochrome, byteCounts, log};

    QuickOverlayStage stage;
    ProgressHUD::useStage(stage);
    ModalStack modals;
    AppDelegate delegate;
    delegate.window.rootViewController = makeInterfaceLayout(platform, modals);
    if (!delegate.applicationDidFinishLaunchingWithOptions())
        return 1;
    delegate.window.rootViewController->loadViewIfNeeded();

    int status = 1;
    {
        QQmlApplicationEngine engine;
        engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
        engine.addImageProvider(QStringLiteral("template"), new TemplateImageProvider);
        engine.setInitialProperties(
            {{QStringLiteral("root"),
              QVariant::fromValue(delegate.window.rootViewController.get())},
             {QStringLiteral("stage"), QVariant::fromValue(&stage)}});
        engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Dubrix/Main.qml")));
        if (engine.rootObjects().isEmpty())
            return 1;
        std::unique_ptr<ScriptPlayer> player;
        if (!arguments.drive.isEmpty())
            player = playScript(*qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst()),
                                arguments.drive);
        status = QGuiApplication::exec();
        delegate.applicationWillTerminate();
    }
    ProgressHUD::withdrawStage();
    return status;
}
