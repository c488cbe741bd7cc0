import QtQuick

/// Draws a screen with the layout file that its controller names.
Loader {
    id: loader

    required property ViewController controller

    Component.onCompleted: setSource(controller.layout, {
        controller: controller
    })
    onWidthChanged: controller.viewDidLayout(width / Theme.scale, height / Theme.scale)
    onHeightChanged: controller.viewDidLayout(width / Theme.scale, height / Theme.scale)
}
