#include <QGuiApplication>
#include <QQmlApplicationEngine>

// empty-window: a window of Qt Quick Controls with one button and nothing else, to compare the
// application's start with.

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    QQmlApplicationEngine engine;
    engine.loadData(R"(
        import QtQuick
        import QtQuick.Controls.Basic
        ApplicationWindow {
            visible: true
            width: 390
            height: 760
            Button { anchors.centerIn: parent; text: "Nothing" }
        }
    )");
    return engine.rootObjects().isEmpty() ? 1 : QGuiApplication::exec();
}
