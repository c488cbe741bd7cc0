pragma ComponentBehavior: Bound

import QtQuick
import DubrixHome

/// One page of icons.
Item {
    id: page

    required property int number
    required property HomeGrid grid

    Repeater {
        model: HomePage {
            id: icons

            applications: page.grid.home.applications
            page: page.number
            capacity: page.grid.capacity
        }
        delegate: HomeIcon {
            grid: page.grid
            position: page.number * page.grid.capacity + slot
            onGone: icons.gone(identifier)
        }
    }
}
