#include "driver/DriverModule.h"

#include "driver/ScriptPlayer.h"

#include <QCoreApplication>
#include <QQuickWindow>

extern "C" __attribute__((visibility("default"))) void
dubrixPlayScript(QQuickWindow& window, int script, int pictures, int answers) {
    using namespace dubrix;
    auto* const player = new ScriptPlayer(window, script, ShotPipe(pictures, answers));
    player->setParent(&window);
    QObject::connect(player, &ScriptPlayer::finished, &window,
                     [](int status) { QCoreApplication::exit(status); });
    player->play();
}
