import QtQuick

/// What stands in place of a list without rows.
Column {
    id: state

    required property string title
    required property string message
    property color ink: Theme.text
    property color quietInk: Theme.secondaryText

    component Words: Text {
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        textFormat: Text.PlainText
        Accessible.name: text
    }

    spacing: Theme.points(8)

    Words {
        text: state.title
        color: state.ink
        font.pixelSize: Theme.points(20)
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }

    Words {
        text: state.message
        color: state.quietInk
        font.pixelSize: Theme.remarkSize
        lineHeight: 1.15
        Accessible.role: Accessible.StaticText
    }
}
