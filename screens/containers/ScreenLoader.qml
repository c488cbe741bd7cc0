import QtQuick
import Dubrix
import DubrixControls

/// Draws a screen with the layout file that its controller names, from when it is first wanted.
Loader {
    id: loader

    required property ViewController controller
    property bool wanted: true

    function load() {
        if (wanted && status === Loader.Null)
            setSource(controller.layout, {
                controller: controller
            });
    }
    function report() {
        controller.viewDidLayout(width / Theme.scale, height / Theme.scale);
    }

    Component.onCompleted: load()
    onWantedChanged: load()
    onWidthChanged: report()
    onHeightChanged: report()
}
