import QtQuick
import QtQuick.Templates as T
import Dubrix
import DubrixControls

/// The application picker: a search field over the list of applications. Letters typed in the list
/// go to the search field.
FocusScope {
    id: view

    required property AppListSampleViewController controller

    readonly property real side: Math.round(Math.max(Theme.margin,
                                                     (width - Theme.contentWidth) / 2))

    /// Makes the row current, and shows it, from which a person goes on: the chosen one, or the first
    /// of those that were searched for.
    function begin() {
        list.currentIndex = Math.max(0, search.text === "" ? controller.dataSource.checkedRow : 0);
        if (list.currentIndex === 0)
            list.positionViewAtBeginning();
        else
            list.positionViewAtIndex(list.currentIndex, ListView.Center);
    }
    function choose(event: KeyEvent) {
        const row = list.currentItem as AppListRow;
        if (row && !event.isAutoRepeat)
            row.press();
    }

    focus: true
    Component.onCompleted: begin()

    Connections {
        target: view.controller.dataSource
        function onRowsChanged() {
            view.begin();
        }
    }

    Shortcut {
        sequence: "Ctrl+F"
        onActivated: search.forceActiveFocus(Qt.ShortcutFocusReason)
    }

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
        Keys.onReturnPressed: event => view.choose(event)
        Keys.onEnterPressed: event => view.choose(event)
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
        T.ScrollBar.vertical: ScrollMark {}
        Accessible.role: Accessible.List
        Accessible.name: view.controller.title
        Keys.onUpPressed: event => {
            event.accepted = currentIndex <= 0;
            if (event.accepted)
                search.forceActiveFocus();
        }
        Keys.onPressed: event => key(event)

        // A list makes no section titles from a component that is bound to its document.
        // qmllint disable unqualified
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
        // qmllint enable unqualified
    }

    EmptyState {
        x: (parent.width - width) / 2
        y: list.y + Math.max(0, (list.height - height) * 0.38)
        width: Math.min(list.width - 2 * Theme.points(28), Theme.points(360))
        visible: title !== ""
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
