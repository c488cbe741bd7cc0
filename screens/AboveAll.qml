import QtQuick
import Dubrix
import DubrixControls

/// What comes and goes above the window's screens: the banner of dropped archives, the mark of where
/// files are taken, and over all the status overlay.
Item {
    id: above

    required property ArchiveDrop drops
    required property QuickOverlayStage stage

    Banner {
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(parent.width - 2 * Theme.margin, Theme.points(420))
        line: parent.height - Theme.points(70)
        words: above.drops?.words ?? ""
        busy: above.drops?.busy ?? false
        percent: above.drops?.percent ?? -1
        stays: above.drops?.failed ?? false
        onPassed: above.drops.passed()
    }

    DropZone {
        anchors.fill: parent
        enabled: above.drops !== null
        takes: files => above.drops.takes(files)
        onTaken: files => above.drops.drop(files)
    }

    StatusOverlay {
        anchors.fill: parent
        stage: above.stage
    }
}
