import QtQuick
import DubrixControls

/// A layer that comes over others and goes again. It can be pressed from the start, before anything of
/// it is seen; and it comes anew while it still fades: those who hear the screen are told of nothing
/// else.
LayerScope {
    id: layer

    property bool shown: false

    signal closed

    enabled: shown
    opacity: shown ? 1 : 0
    visible: false
    Accessible.role: Accessible.LayeredPane
    onShownChanged: {
        visible = !shown;
        visible = shown || opacity > 0;
        if (!shown)
            closed();
    }
    onOpacityChanged: visible = shown || opacity > 0

    Behavior on opacity {
        NumberAnimation {
            duration: Theme.duration(140)
        }
    }
}
