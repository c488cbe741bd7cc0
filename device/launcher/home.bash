# The home screen: a window that looks at the device and changes nothing itself.
# shellcheck shell=bash

home_requests=(install remove restore export start)

# prepare_home APPEARANCE: leaves the arguments of the home screen in `home_arguments`; another
# appearance may have been asked for. The home screen may read the device, has no network,
# and what it keeps for itself ends with it.
prepare_home() {
    home_arguments=(--appearance "${appearance:-$1}")
    read_only=yes
    if [[ -n $isolated ]]; then
        shared+=(--ro-bind "$share/Dubrix.app" /run/mobile/Dubrix.app --setenv XDG_CACHE_HOME /tmp)
        home_arguments+=(--own /run/mobile/Dubrix.app)
    else
        home_arguments+=(--own "$share/Dubrix.app")
    fi
    local motion
    motion=$(desktop_motion)
    home_arguments+=(${motion:+"$motion"})
}

# show_home SIZE BESIDE FILE...: the home screen, and these files to be installed by it; size and
# beside may be empty. One that is open already comes to the front.
show_home() {
    local size=$1 beside=$2 lines=()
    shift 2
    (($# == 0)) || lines=("${@/#/$'install\t'}")
    claim_window home "${lines[@]}" raise || return 0
    open_desk "${home_requests[@]}"
    ((${#lines[@]} == 0)) || tell_window "${lines[@]}"
    prepare_home "$(desktop_appearance)"
    share_display
    run_on_device dubrix-home "${home_arguments[@]}" --desk 3:4 ${size:+--size "$size"} \
        ${beside:+--beside} ${verbose:+--verbose}
    local status=$?
    close_desk
    return "$status"
}

# shoot_home FILE SIZE: saves a picture, and nothing else whatever happens. The name goes the way of a
# script's, where quotes keep every byte of it.
shoot_home() {
    local name=$1 pictures=shot
    name=${name//\\/\\\\}
    name=${name//\"/\\\"}
    name=${name//$'\n'/\\n}
    drive_command home ${2:+--size "$2"} - <<<"shot \"$name\""
}
