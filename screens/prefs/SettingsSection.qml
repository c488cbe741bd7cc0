import QtQuick
import DubrixControls

/// One group of rows on a rounded card.
Rectangle {
    id: section

    default property alias rows: column.data

    height: column.height
    color: Theme.card
    radius: Theme.cardRadius
    clip: true

    Column {
        id: column

        width: parent.width
    }
}
