# The desktop's display on the device.
# shellcheck shell=bash

mount_point=

has_display() {
    [[ -n ${WAYLAND_DISPLAY-}${DISPLAY-} ]]
}

require_display() {
    has_display || [[ -n ${QT_QPA_PLATFORM-} ]] ||
        mistake "no display: neither WAYLAND_DISPLAY nor DISPLAY is set"
}

share_display() {
    [[ -n $isolated ]] || return 0
    local node
    for node in /dev/dri /dev/nvidia*; do
        shared+=(--dev-bind-try "$node" "$node")
    done
    [[ -z ${XDG_SESSION_TYPE-} ]] || set_variable XDG_SESSION_TYPE "$XDG_SESSION_TYPE"
    [[ -z ${WAYLAND_DISPLAY-} ]] || share_wayland
    [[ -z ${DISPLAY-} ]] || share_x11
    share_accessibility
}

share_wayland() {
    local socket=$WAYLAND_DISPLAY
    [[ $socket == /* ]] || socket=${XDG_RUNTIME_DIR-}/$socket
    [[ -S $socket ]] || return 0
    shared+=(--bind "$socket" /run/mobile/wayland-0)
    set_variable WAYLAND_DISPLAY wayland-0
}

# The sockets' folder lies below /tmp, so mounting it leaves an empty folder in the device's tmp. A
# shared lock on tmp (descriptor 5) tells the last launcher of the device, which removes it:
# removing it earlier would unmount it under another application.
share_x11() {
    local authority=${XAUTHORITY:-${HOME-}/.Xauthority}
    set_variable DISPLAY "$DISPLAY"
    memory=() # windows' pictures go to the server through it
    if [[ -r $authority ]]; then
        shared+=(--ro-bind "$authority" /run/mobile/Xauthority)
        set_variable XAUTHORITY /run/mobile/Xauthority
    fi
    [[ -d /tmp/.X11-unix ]] || return 0
    if [[ -n $read_only ]]; then
        shared+=(--bind /tmp/.X11-unix /tmp/.X11-unix)
        return
    fi
    exec 5<"$device/tmp" && flock -s 5 || return 0
    mount_point=$device/tmp/.X11-unix
    # Nothing that an application left under this name may lead the mount elsewhere.
    [[ -d $mount_point && ! -L $mount_point ]] || rm -f -- "$mount_point"
    shared+=(--bind /tmp/.X11-unix /tmp/.X11-unix)
}

forget_display() {
    [[ -n $mount_point ]] || return 0
    if flock -n -x 5; then
        rmdir -- "$mount_point" 2>/dev/null
    fi
    mount_point=
}

# "--reduced-motion" where the desktop's settings ask for fewer movements.
desktop_motion() {
    if type -P gsettings >/dev/null &&
        [[ $(timeout 1 gsettings get org.gnome.desktop.interface enable-animations 2>/dev/null) == false ]]; then
        echo --reduced-motion
    fi
}

# "dark" or "light": what the desktop's settings prefer. The application cannot ask itself, since
# the session's bus does not reach the device.
desktop_appearance() {
    local answer=
    if type -P gdbus >/dev/null; then
        answer=$(timeout 1 gdbus call --session --dest org.freedesktop.portal.Desktop \
            --object-path /org/freedesktop/portal/desktop \
            --method org.freedesktop.portal.Settings.Read \
            org.freedesktop.appearance color-scheme 2>/dev/null)
    fi
    if [[ -z $answer ]] && type -P gsettings >/dev/null; then
        answer=$(timeout 1 gsettings get org.gnome.desktop.interface color-scheme 2>/dev/null)
    fi
    case $answer in
    *'uint32 1'* | *prefer-dark*) echo dark ;;
    *) echo light ;;
    esac
}
