import QtQuick
import Dubrix
import DubrixControls

/// A web page under its spinner. The page is made when the screen has come to rest, since loading
/// the web engine holds everything up for a moment.
FocusScope {
    id: view

    required property QVWebViewController controller

    focus: true

    Loader {
        id: page

        anchors.fill: parent
        focus: true
    }

    Spinner {
        anchors.centerIn: parent
        running: view.controller.activityIndicator.animating
        visible: !view.controller.activityIndicator.hidden
    }

    Timer {
        interval: 300
        running: true
        onTriggered: page.setSource("WebPage.qml", {
            controller: view.controller
        })
    }
}
