import QtQuick

/// Words that come up for a while, for those who hear the screen. They are told of what comes, and of
/// nothing whose words change; so it comes again.
Item {
    id: announcement

    required property string words

    onWordsChanged: if (words !== "") {
        visible = false;
        visible = true;
    }
    Accessible.role: Accessible.AlertMessage
    Accessible.name: words
}
