import QtQuick
import DubrixControls
import DubrixHome

/// An icon with its name under it.
Item {
    id: art

    required property url source
    required property string name
    required property real cell
    property bool pressed: false
    property bool marked: false
    /// How far it is above its place.
    property real lift: 0

    width: HomeTheme.iconEdge
    height: width

    Rectangle {
        anchors.fill: picture
        anchors.margins: -Theme.points(5)
        radius: Theme.points(18)
        color: "transparent"
        border.width: Theme.points(2.5)
        border.color: Theme.accent
        visible: art.marked
    }

    Rectangle {
        anchors.fill: parent
        radius: width * 0.2237
        color: HomeTheme.glass
        visible: picture.status !== Image.Ready
    }

    Image {
        id: picture

        readonly property real pixels: Math.round(art.width * Screen.devicePixelRatio)

        y: -art.lift
        width: parent.width
        height: width
        source: art.source
        sourceSize.width: pixels
        sourceSize.height: pixels
        asynchronous: true
        opacity: art.pressed ? 0.65 : 1
        Accessible.ignored: true
    }

    Text {
        anchors {
            top: parent.bottom
            topMargin: Theme.points(6)
            horizontalCenter: parent.horizontalCenter
        }
        width: art.cell - Theme.points(6)
        text: art.name
        color: HomeTheme.ink
        style: Text.Raised
        styleColor: HomeTheme.inkShadow
        font.pixelSize: HomeTheme.nameSize
        font.weight: Font.Medium
        horizontalAlignment: Text.AlignHCenter
        // The number of a duplicate stands at the end.
        elide: Text.ElideMiddle
        textFormat: Text.PlainText
        Accessible.ignored: true
    }
}
