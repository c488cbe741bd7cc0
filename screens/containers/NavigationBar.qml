import QtQuick
import Dubrix
import DubrixControls

/// The bar over a navigation controller's screens: the way back or the left button, and the title.
Item {
    id: bar

    required property NavigationController controller
    readonly property ViewController screen: controller.topViewController

    height: Theme.points(52)

    TextButton {
        id: back

        anchors.verticalCenter: parent.verticalCenter
        x: Theme.points(6)
        width: Math.min(implicitWidth, bar.width * 0.4)
        text: bar.controller.backTitle === "" ? qsTr("Back") : bar.controller.backTitle
        backward: true
        strong: false
        visible: bar.controller.canGoBack
        onTapped: bar.controller.popViewController()
    }

    TextButton {
        id: left

        anchors.verticalCenter: parent.verticalCenter
        x: Theme.points(8)
        text: bar.screen.leftBarButton
        strong: false
        visible: text !== "" && !back.visible
        onTapped: bar.screen.tapLeftBarButton()
    }

    // In the middle as far as the button leaves that to it.
    Text {
        readonly property real start: Math.max(back.visible ? back.x + back.width : 0,
                                               left.visible ? left.x + left.width : 0,
                                               Theme.margin)

        anchors.verticalCenter: parent.verticalCenter
        x: Math.round(Math.max(start, Math.min((parent.width - width) / 2,
                                               parent.width - Theme.margin - width)))
        width: Math.min(implicitWidth, parent.width - start - Theme.margin)
        text: bar.screen.title
        color: Theme.text
        font.pixelSize: Theme.titleSize
        font.weight: Font.DemiBold
        elide: Text.ElideRight
        textFormat: Text.PlainText
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }

    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: Theme.hairline
        color: Theme.separator
    }
}
