import QtQuick
import Dubrix

/// The application picker: a search field over the list of applications. Letters typed in the list
/// go to the search field.
FocusScope {
    id: view

    required property AppListSampleViewController controller

    readonly property real side: Math.round(Math.max(Theme.margin,
                                                     (width - Theme.contentWidth) / 2))

    SearchField {
        id: search

        anchors {
            top: parent.top
            topMargin: Theme.points(12)
            left: parent.left
            leftMargin: view.side
            right: parent.right
            rightMargin: view.side
        }
        text: view.controller.searchField.text
        onEdited: text => view.controller.searchFieldChanged(text)
        Keys.onDownPressed: list.forceActiveFocus()
        Keys.onReturnPressed: list.forceActiveFocus()
    }

    ListView {
        id: list

        function move(rows: int) {
            currentIndex = Math.max(0, Math.min(count - 1, currentIndex + rows));
        }
        function key(event: KeyEvent) {
            if (event.key === Qt.Key_PageDown || event.key === Qt.Key_PageUp)
                move((event.key === Qt.Key_PageDown ? 1 : -1) * Math.floor(height / Theme.points(44)));
            else if (event.key === Qt.Key_Home || event.key === Qt.Key_End)
                currentIndex = event.key === Qt.Key_Home ? 0 : count - 1;
            else if (/^\S+$/.test(event.text) && !(event.modifiers & Qt.ControlModifier))
                search.typeAhead(event.text);
            else
                event.accepted = false;
        }

        anchors {
            top: search.bottom
            topMargin: Math.round(Theme.points(12))
            left: parent.left
            right: parent.right
            bottom: parent.bottom
        }
        focus: true
        activeFocusOnTab: count > 0
        clip: true
        model: view.controller.dataSource
        reuseItems: true
        cacheBuffer: 0
        displayMarginBeginning: Theme.points(220)
        displayMarginEnd: Theme.points(220)
        bottomMargin: Theme.points(24)
        boundsBehavior: Flickable.DragOverBounds
        highlightMoveDuration: 0
        Accessible.role: Accessible.List
        Accessible.name: view.controller.title
        Keys.onUpPressed: event => {
            event.accepted = currentIndex <= 0;
            if (event.accepted)
                search.forceActiveFocus();
        }
        Keys.onPressed: event => key(event)

        section.property: "section"
        section.delegate: Text {
            required property string section

            x: view.side
            width: list.width - 2 * view.side
            height: Math.ceil(implicitHeight)
            leftPadding: Theme.points(4)
            rightPadding: Theme.points(4)
            bottomPadding: Theme.points(8)
            text: view.controller.dataSource.tableViewTitleForHeaderInSection(Number(section))
            color: Theme.secondaryText
            font.pixelSize: Theme.noteSize
            wrapMode: Text.Wrap
            textFormat: Text.PlainText
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }

        delegate: AppListRow {
            x: view.side
            width: list.width - 2 * view.side
            selected: view.controller.tableView.selectedSection === section
                      && view.controller.tableView.selectedRow === row
            onTapped: view.controller.tableViewDidSelectRowAtIndexPath(section, row)
        }
    }

    ScrollMark {
        anchors {
            top: list.top
            right: parent.right
            bottom: list.bottom
        }
        list: list
    }

    EmptyState {
        anchors.fill: list
        title: view.controller.emptyTitle
        message: view.controller.emptyMessage
    }

    // A list that is there within the blink of an eye needs no spinner.
    Spinner {
        anchors.centerIn: list
        running: visible
        visible: view.controller.dataSource.loading && patience.passed

        Timer {
            id: patience

            property bool passed: false

            interval: 400
            running: view.controller.dataSource.loading
            onTriggered: passed = true
        }
    }
}
