import QtQuick
import Dubrix

/// One modal screen over everything below it: takes all input, fades in and out.
FocusScope {
    id: layer

    required property ViewController controller
    required property bool dismissing
    required property bool animated
    required property int transitionTime
    property bool topmost: true

    property real presence: 0

    focus: !dismissing
    enabled: !dismissing
    Component.onCompleted: {
        presence = 1;
        forceActiveFocus();
    }
    onDismissingChanged: presence = 0

    Behavior on presence {
        enabled: layer.animated
        NumberAnimation {
            duration: layer.transitionTime
            easing.type: Easing.OutCubic
        }
    }

    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        preventStealing: true
        onWheel: wheel => wheel.accepted = true
    }

    ScreenLoader {
        anchors.fill: parent
        focus: true
        controller: layer.controller
        onLoaded: item.presence = Qt.binding(() => layer.presence)
    }
}
