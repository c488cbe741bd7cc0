#include "device/home/HomeScreen.h"
#include "device/home/Wallpaper.h"
#include "device/registry/BundleIcon.h"
#include "windows/WindowProgram.h"

#include <QQmlExtensionPlugin>
#include <QQuickWindow>

Q_IMPORT_QML_PLUGIN(DubrixHomePlugin)

int main(int argc, char** argv) {
    using namespace dubrix;
    const QString own = QStringLiteral("own");
    WindowProgram program(
        argc, argv,
        {.description = "The device's home screen. Start it with the command 'dubrix home'.",
         .side = Side::Left,
         .options = {
             {own, "The application's own bundle.", "folder", "/Applications/Dubrix.app"}}});
    HomeApplications applications(program.root()); // reads while the window is made
    HomeScreen home(applications, program.errands(), program.value(own));

    program.engine().addImageProvider(QLatin1String(Wallpaper::name), new Wallpaper);
    program.showIcons(iconOfBundle);
    QQuickWindow* const window =
        program.open(QStringLiteral("DubrixHome/HomeWindow.qml"),
                     {{QStringLiteral("home"), QVariant::fromValue(&home)}});
    if (window == nullptr)
        return 0;
    const auto play = [&program, window] { program.playScript(*window); };
    if (applications.isLoaded())
        play();
    else
        QObject::connect(&applications, &HomeApplications::changed, window, play,
                         Qt::SingleShotConnection);
    return program.run();
}
