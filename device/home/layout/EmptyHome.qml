import QtQuick
import DubrixHome

/// What stands where no application is.
Column {
    spacing: HomeTheme.points(8)

    Text {
        width: parent.width
        text: qsTr("No applications yet")
        color: HomeTheme.ink
        font.pixelSize: HomeTheme.points(20)
        font.weight: Font.DemiBold
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
    }
    Text {
        width: parent.width
        text: qsTr("Drop an .ipa archive here to install it.")
        color: HomeTheme.quietInk
        font.pixelSize: HomeTheme.bodySize
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
    }
}
