import QtQuick
import Dubrix
import DubrixControls

/// One modal screen over everything below it: takes all input, comes and goes.
LayerScope {
    id: layer

    required property ViewController controller
    required property bool dismissing
    required property bool animated
    required property int transitionTime
    property bool topmost: true
    /// Whether something that is no modal screen lies over it.
    property bool covered: false

    /// From 0, away, to 1, there.
    property real presence: 0

    focus: topmost && !dismissing
    enabled: topmost && !dismissing && !covered
    Accessible.role: Accessible.LayeredPane
    Component.onCompleted: {
        presence = 1;
        content.setSource(controller.modalLayout, {
            controller: controller,
            modalLayer: layer
        });
        forceActiveFocus();
    }
    onTopmostChanged: if (topmost)
        forceActiveFocus()
    onDismissingChanged: presence = 0

    Behavior on presence {
        enabled: layer.animated
        NumberAnimation {
            duration: Theme.duration(layer.transitionTime)
            easing.type: Easing.OutCubic
        }
    }

    Loader {
        id: content

        anchors.fill: parent
        focus: true
    }
}
