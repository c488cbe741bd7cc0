# Driving a window by a script. The window has none of the desktop's paths: its script
# comes through descriptor 6, its screenshots go out through 7 and are answered through 8.
# shellcheck shell=bash disable=SC2154 # scratch and the like are the launcher's

# drive_window WINDOW SCRIPT SHOW SIZE: WINDOW is app or home, SCRIPT a file or - for standard input;
# SIZE may be empty.
drive_window() {
    local window=$1 arguments=(--desk 3:4 ${4:+--size "$4"})
    shift
    if [[ $window == home ]]; then
        open_desk "${home_requests[@]}"
    else
        open_desk install
    fi
    if [[ -n $2 ]]; then
        share_display
    else
        set_variable QT_QPA_PLATFORM offscreen
        set_variable QT_QUICK_BACKEND "${QT_QUICK_BACKEND:-software}"
    fi
    if [[ $window == home ]]; then
        prepare_home light
        arguments+=("${home_arguments[@]}")
    else
        share_network
        arguments+=(--appearance "${appearance:-light}")
    fi
    if [[ $1 == - ]]; then
        exec 6<&0
    else
        exec 6<"$1" || exit 2
    fi
    exec 0</dev/null
    drive_with_shots "dubrix-$window" "${arguments[@]}"
    local status=$?
    close_desk
    return "$status"
}

drive_with_shots() {
    local shots_in shots_out receiver status
    coproc RECEIVER { receive_shots 3<&- 4<&- 6<&-; }
    receiver=$RECEIVER_PID
    shots_in=${RECEIVER[0]} shots_out=${RECEIVER[1]}
    # Opened anew, not duplicated: bash hands its own ends of a coprocess to nobody.
    exec 7>"/dev/fd/$shots_out" 8<"/dev/fd/$shots_in"
    exec {shots_out}>&- {shots_in}<&-
    kept+=(--keep 6 --keep 7 --keep 8)
    run_on_device "$1" --drive 6:7:8 "${@:2}"
    status=$?
    exec 6<&- 7>&- 8<&-
    wait "$receiver"
    return "$status"
}

# Reads NAME, SIZE and the bytes of each screenshot, answers each with "ok" or what went wrong.
receive_shots() {
    local name size
    while IFS= read -r name && IFS= read -r size; do
        [[ $size =~ ^[0-9]+$ ]] || return
        save_shot "$name" "$size"
    done
}

# Whole or not at all, and all SIZE bytes are taken from the pipe whatever happens: tee reads on
# after a failed write.
save_shot() {
    local target=$1 temporary error
    [[ $target == /* ]] || target=./$target
    if [[ -d $target ]]; then
        temporary='Is a directory'
    else
        temporary=$(mktemp -- "$(dirname -- "$target")/.dubrix-XXXXXX" 2>&1)
    fi
    if [[ ! -f $temporary ]]; then
        head -c "$2" >/dev/null
        echo "$1: ${temporary##*: }"
        return
    fi
    if error=$({ head -c "$2" | tee -- "$temporary" >/dev/null; } 2>&1) &&
        [[ $(stat -c %s -- "$temporary") == "$2" ]] &&
        error=$(chmod '=rw' -- "$temporary" 2>&1 && mv -fT -- "$temporary" "$target" 2>&1); then
        echo ok
    else
        rm -f -- "$temporary"
        echo "$1: ${error##*: }"
    fi
}
