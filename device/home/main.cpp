#include "device/BundleIcon.h"
#include "device/desk/Desk.h"
#include "device/home/HomeScreen.h"
#include "device/home/Wallpaper.h"
#include "driver/ScriptPlayer.h"
#include "looks/Appearance.h"
#include "looks/ApplicationIconProvider.h"
#include "looks/WindowArguments.h"
#include "looks/WindowPlace.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlExtensionPlugin>
#include <QQuickWindow>
#include <memory>

Q_IMPORT_QML_PLUGIN(DubrixHomePlugin)

namespace {

using namespace dubrix;

struct Arguments {
    std::filesystem::path root;
    /// The application's own bundle on this machine.
    std::filesystem::path own;
    QString appearance;
    /// The window's size; empty for the layout's own.
    QSize size;
    /// The descriptors of a driver's script, of its pictures and of the answers to them.
    QList<int> drive;
    /// The descriptors of the desk's answers and requests.
    QList<int> desk;
    bool beside = false;
    bool reducedMotion = false;
};

Arguments parseArguments(const QGuiApplication& application) {
    const auto option = [](const char* name, const char* description, const char* value = "") {
        return QCommandLineOption(QString::fromLatin1(name), QString::fromLatin1(description),
                                  QString::fromLatin1(value));
    };
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("The device's home screen. Start it with the command 'dubrix home'."));
    parser.addHelpOption();
    const auto root = option("root", "The device's root folder.", "folder");
    const auto own = option("own", "The application's own bundle.", "folder");
    const auto appearance = option("appearance", "light or dark.", "appearance");
    const auto size = option("size", "The window's size.", "WIDTHxHEIGHT");
    const auto drive = option("drive", "Descriptors of script, pictures and answers.", "s:p:a");
    const auto desk = option("desk", "Descriptors of the launcher's answers and of requests to it.",
                             "answers:requests");
    const auto beside = option("beside", "Left of the application; not at all without room.");
    const auto still = option("reduced-motion", "Leave movements out.");
    parser.addOptions({root, own, appearance, size, drive, desk, beside, still});
    parser.process(application);
    Arguments arguments{.root = parser.isSet(root) ? parser.value(root).toStdString() : "/",
                        .own = parser.isSet(own) ? parser.value(own).toStdString()
                                                 : "/Applications/Dubrix.app",
                        .appearance = parser.value(appearance),
                        .size = sizeIn(parser.value(size)),
                        .drive = descriptorsIn(parser.value(drive)),
                        .desk = descriptorsIn(parser.value(desk)),
                        .beside = parser.isSet(beside),
                        .reducedMotion = parser.isSet(still)};
    if ((parser.isSet(drive) && arguments.drive.size() != 3) ||
        (parser.isSet(desk) && arguments.desk.size() != 2))
        parser.showHelp(2);
    return arguments;
}

/// Plays the script when the list of applications is there; the program ends with it.
std::unique_ptr<ScriptPlayer> playScript(QQuickWindow& window, const HomeApplications& applications,
                                         const QList<int>& descriptors) {
    auto player = std::make_unique<ScriptPlayer>(window, descriptors[0],
                                                 ShotPipe(descriptors[1], descriptors[2]));
    QObject::connect(player.get(), &ScriptPlayer::finished, &window,
                     [](int status) { QCoreApplication::exit(status); });
    const auto play = [player = player.get()] { player->play(); };
    if (applications.isLoaded())
        play();
    else
        QObject::connect(&applications, &HomeApplications::changed, player.get(), play,
                         Qt::SingleShotConnection);
    return player;
}

} // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("dubrix-home"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Dubrix"));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.dubrix.Dubrix"));
    const Arguments arguments = parseArguments(application);
    HomeApplications applications(arguments.root); // reads while the window is made
    chooseFont();
    chooseAppearance(arguments.appearance);

    std::unique_ptr<Desk> desk;
    if (!arguments.desk.isEmpty())
        desk = std::make_unique<Desk>(arguments.desk[0], arguments.desk[1]);
    HomeScreen home(applications, desk.get(), arguments.own);
    home.reducedMotion = arguments.reducedMotion;

    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QLatin1String(Wallpaper::name), new Wallpaper);
    engine.addImageProvider(QLatin1String(ApplicationIconProvider::name),
                            new ApplicationIconProvider(iconOfBundle));
    engine.setInitialProperties(
        {{QStringLiteral("home"), QVariant::fromValue(&home)}, {QStringLiteral("visible"), false}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/DubrixHome/HomeWindow.qml")));
    if (engine.rootObjects().isEmpty())
        return 1;
    auto& window = *qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst());
    if (!arguments.size.isEmpty())
        window.resize(arguments.size);
    if (arguments.beside && !standBeside(window, Side::Left))
        return 0;
    window.show();
    if (desk)
        QObject::connect(desk.get(), &Desk::raiseAsked, &window,
                         [&window] { bringToFront(window); });
    std::unique_ptr<ScriptPlayer> player;
    if (!arguments.drive.isEmpty())
        player = playScript(window, applications, arguments.drive);
    return QGuiApplication::exec();
}
