pragma ComponentBehavior: Bound

import QtQuick
import Dubrix
import DubrixControls

/// The tabs' buttons: image over title, the selected one in the accent colour.
Rectangle {
    id: bar

    required property TabBarController controller

    height: Theme.points(52)
    color: Theme.bar
    Accessible.role: Accessible.PageTabList
    Accessible.name: qsTr("Tabs")

    Rectangle {
        width: parent.width
        height: Theme.hairline
        color: Theme.separator
    }

    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(parent.width, Theme.contentWidth)
        height: parent.height

        Repeater {
            model: bar.controller.items
            delegate: Pressable {
                id: button

                required property int index
                required property var modelData
                readonly property bool selected: index === bar.controller.selectedIndex
                readonly property color tint: selected ? Theme.accent : Theme.secondaryText
                readonly property string image: selected ? modelData.selectedImage.name
                                                         : modelData.image.name

                width: parent.width / bar.controller.items.length
                height: parent.height
                text: modelData.title
                Accessible.role: Accessible.PageTab
                Accessible.selected: selected
                onTapped: bar.controller.selectedIndex = index

                FocusRing {
                    inset: Theme.points(3)
                }

                Image {
                    id: picture

                    anchors.horizontalCenter: parent.horizontalCenter
                    y: Theme.points(7)
                    width: Theme.points(25)
                    height: Theme.points(25)
                    sourceSize.width: width
                    sourceSize.height: height
                    source: button.image === "" ? ""
                                                : "image://template/" + button.image + "/"
                                                  + button.tint.toString().slice(1)
                }

                Text {
                    anchors.horizontalCenter: parent.horizontalCenter
                    anchors.top: picture.bottom
                    anchors.topMargin: Theme.points(2)
                    text: button.text
                    color: button.tint
                    font.pixelSize: Theme.tabSize
                    font.weight: Font.Medium
                    Accessible.ignored: true
                }
            }
        }
    }
}
