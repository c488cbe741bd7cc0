import QtQuick

/// What stands in place of a list without rows.
Item {
    id: state

    required property string title
    required property string message

    visible: title !== ""

    Column {
        x: (parent.width - width) / 2
        y: Math.max(0, (parent.height - height) * 0.38)
        width: Math.min(parent.width - 2 * Theme.points(28), Theme.points(360))
        spacing: Theme.points(8)

        Text {
            width: parent.width
            text: state.title
            color: Theme.text
            font.pixelSize: Theme.titleSize
            font.weight: Font.DemiBold
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            textFormat: Text.PlainText
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }

        Text {
            width: parent.width
            text: state.message
            color: Theme.secondaryText
            font.pixelSize: Theme.bodySize
            lineHeight: 1.15
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            textFormat: Text.PlainText
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
}
