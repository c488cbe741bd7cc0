#include "network/NetworkServices.h"
#include "platform/desktop/DesktopUrlOpener.h"
#include "platform/desktop/PaintingPlatform.h"
#include "platform/posix/PosixApplications.h"
#include "platform/posix/PosixPlatform.h"
#include "platform/posix/linux/SystemCallConfinement.h"
#include "resources/OwnBundle.h"
#include "screens/ApplicationWindow.h"
#include "screens/about/AboutTableViewController.h"
#include "windows/WindowProgram.h"

#include <QQmlExtensionPlugin>

Q_IMPORT_QML_PLUGIN(DubrixPlugin)

int main(int argc, char** argv) {
    using namespace dubrix;
    // For the web engine, which cannot ask for it any more when it is loaded with the first page.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    const QString filter = QStringLiteral("command-filter");
    WindowProgram program(
        argc, argv,
        {.description = "The application itself. Start it with the command 'dubrix'.",
         .side = Side::Right,
         .options = {{filter, "The system-call filter of the commands that it runs.", "file"}}});
    auto confinement = SystemCallConfinement::read(program.value(filter));
    if (!confinement && program.isSet(filter)) {
        qCritical("The commands' system-call filter cannot be read.");
        return 1;
    }
    const std::filesystem::path programs = QCoreApplication::applicationDirPath().toStdString();
    PosixPlatform posix(program.root(), programs / "device-paths.bash", std::move(confinement));
    NetworkServices network(programs / "dubrix-network.so", posix.log);
    PaintingPlatform painting(posix.ports({.downloader = &network}));
    const Platform platform = painting.ports();
    const PosixApplicationIcons icons(program.root());
    program.showIcons([&icons](const std::string& bundlePath, unsigned pixels) {
        return icons.iconOfBundle(bundlePath, pixels);
    });
    DesktopUrlOpener urls(program.root(), [&program](const std::string& address) {
        if (program.errands() != nullptr)
            program.errands()->tellNotOpened(QString::fromStdString(address));
    });
    const PropertyList information = ownInformation();
    const AboutServices about{posix.log, urls, network, information};
    return ApplicationWindow(program, platform, about).run();
}
