import QtQuick
import DubrixControls
import DubrixHome

/// A question or a failure, over everything else until it is answered.
FadingLayer {
    id: alert

    required property HomeScreen home

    // What it says is kept while it fades.
    Connections {
        target: alert.home
        function onAlertChanged() {
            alert.shown = false;
            if (alert.home.alertTitle === "")
                return;
            box.title = alert.home.alertTitle;
            box.message = alert.home.alertText;
            box.action = alert.home.alertAction;
            alert.shown = true;
            box.forceActiveFocus();
        }
    }

    AlertBox {
        id: box

        property string action: ""
        readonly property bool asks: action !== ""

        anchors.fill: parent
        focus: true
        title: ""
        message: ""
        buttons: asks ? [qsTr("Cancel"), action] : [qsTr("OK")]
        startButton: 0
        cancelButton: 0
        dangerousButton: asks ? 1 : -1
        onPressed: button => button === 0 ? alert.home.alertDismissed() : alert.home.alertAccepted()
    }
}
