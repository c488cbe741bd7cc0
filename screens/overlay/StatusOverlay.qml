import QtQuick
import Dubrix
import DubrixControls

/// The status overlay, drawn from its stage's numbers, which are in points.
Item {
    id: overlay

    required property QuickOverlayStage stage

    onWidthChanged: stage.windowDidLayout(width / Theme.scale, height / Theme.scale)
    onHeightChanged: stage.windowDidLayout(width / Theme.scale, height / Theme.scale)

    Item {
        width: overlay.width / Theme.scale
        height: overlay.height / Theme.scale
        scale: Theme.scale
        transformOrigin: Item.TopLeft

        Shade {
            anchors.fill: parent
            visible: overlay.stage.background.shown
            color: overlay.stage.background.color
        }

        Rectangle {
            id: box

            readonly property OverlayPiece piece: overlay.stage.hud

            x: piece.x
            y: piece.y
            width: piece.width
            height: piece.height
            visible: piece.shown
            radius: piece.cornerRadius
            color: Theme.overlayMaterial
            border.width: 1
            border.color: "#1a000000"
            opacity: piece.alpha
            scale: piece.scale
            clip: true

            Behavior on opacity {
                NumberAnimation {
                    duration: Theme.duration(box.piece.duration)
                }
            }
            Behavior on scale {
                NumberAnimation {
                    duration: Theme.duration(box.piece.duration)
                }
            }
            Behavior on y {
                NumberAnimation {
                    duration: Theme.duration(box.piece.duration)
                }
            }

            Announcement {
                anchors.fill: parent
                words: overlay.stage.message
            }

            Rectangle {
                anchors.fill: parent
                radius: parent.radius
                color: box.piece.color
            }

            Spinner {
                readonly property OverlayPiece piece: overlay.stage.spinner

                x: piece.x
                y: piece.y
                width: piece.width
                height: piece.height
                visible: piece.shown && overlay.stage.spinning
                color: piece.color
            }

            Image {
                readonly property OverlayPiece piece: overlay.stage.image

                x: piece.x
                y: piece.y
                width: piece.width
                height: piece.height
                visible: piece.shown
                source: overlay.stage.imageFile === ""
                        ? "" : "qrc:/resources/" + overlay.stage.imageFile
                Accessible.ignored: true
            }

            Text {
                readonly property OverlayPiece piece: overlay.stage.label

                x: piece.x
                y: piece.y
                width: piece.width
                height: piece.height
                visible: piece.shown
                text: overlay.stage.message
                color: piece.color
                font.pixelSize: overlay.stage.fontSize
                font.bold: true
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
                wrapMode: Text.Wrap
                elide: Text.ElideRight
                textFormat: Text.PlainText
                Accessible.ignored: true
            }
        }
    }
}
