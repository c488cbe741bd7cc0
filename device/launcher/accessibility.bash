# The way of those who hear the screen, or have it read in braille, to a window.
# shellcheck shell=bash

listener=

# a11y METHOD [ARGUMENT...]: what the session's bus answers of assistive technology.
a11y() {
    timeout 1 gdbus call --session --dest org.a11y.Bus --object-path /org/a11y/bus --method "$@" \
        2>/dev/null
}

# Assistive technology reads and operates windows over a bus of its own, on which each can reach all.
# While the desktop says that there is any, a window gets a proxy of that bus: it answers there, and
# can ask nothing of others (the filter's rules are calls that a program makes to be heard).
share_accessibility() {
    [[ -n $isolated && -n ${DBUS_SESSION_BUS_ADDRESS-} ]] || return 0
    type -P gdbus >/dev/null && type -P xdg-dbus-proxy >/dev/null || return 0
    local get='org.freedesktop.DBus.Properties.Get org.a11y.Status' address socket
    # shellcheck disable=SC2086 # a method and its first argument
    [[ $(a11y $get IsEnabled)$(a11y $get ScreenReaderEnabled) == *true* ]] || return 0
    address=$(a11y org.a11y.Bus.GetAddress)
    [[ $address =~ (unix:path=(/run/[^,\']+)[^\']*) ]] || return 0
    address=${BASH_REMATCH[1]} socket=${BASH_REMATCH[2]}
    make_scratch
    local root=@/org/a11y/atspi/accessible/root registry=org.a11y.atspi.Registry
    local events=org.a11y.atspi.DeviceEventController at=@/org/a11y/atspi/registry
    # It says when it is ready, and ends when nobody listens to that any more.
    exec {listener}< <(exec xdg-dbus-proxy --fd=1 \
        "$DBUS_SESSION_BUS_ADDRESS" "$scratch/session-bus" --filter \
        --call=org.a11y.Bus=org.a11y.Bus.GetAddress@/org/a11y/bus \
        --call=org.a11y.Bus=org.freedesktop.DBus.Properties.Get@/org/a11y/bus \
        "$address" "$scratch/accessibility-bus" --filter --sloppy-names \
        --call=$registry=org.a11y.atspi.Socket.Embed$root \
        --call=$registry=org.a11y.atspi.Socket.Unembed$root \
        --call=$registry=org.a11y.atspi.Registry.GetRegisteredEvents$at \
        --call=$registry=$events.GetKeystrokeListeners$at/deviceeventcontroller \
        --call=$registry=$events.GetDeviceEventListeners$at/deviceeventcontroller \
        --call=$registry=$events.NotifyListenersSync$at/deviceeventcontroller \
        --call=$registry=$events.NotifyListenersAsync$at/deviceeventcontroller \
        </dev/null 2>/dev/null 3>&- 4>&- 5>&- 9>&-)
    read -r -t 1 -n 1 -u "$listener" || return 0
    shared+=(--bind "$scratch/session-bus" /run/mobile/session-bus
        --bind "$scratch/accessibility-bus" "$socket"
        --setenv DBUS_SESSION_BUS_ADDRESS unix:path=/run/mobile/session-bus)
}

forget_accessibility() {
    [[ -z $listener ]] || exec {listener}<&-
    listener=
}
