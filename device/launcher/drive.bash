# Driving a window by a script. The window has none of the desktop's paths: its script
# comes through descriptor 6, its screenshots go out through 7 and are answered through 8.
# shellcheck shell=bash

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
        [[ $window == home ]] || share_addresses
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

# The script and the pictures go through the program that writes those that the script asks for:
# device/judge/Pictures.h. `pictures` may be "shot" where a failure is to leave none.
drive_with_shots() {
    local to_window script to_judge sent to_answers answers judge status word=
    open_pipe to_window script
    open_pipe to_judge sent
    open_pipe to_answers answers
    "$libexec/dubrix-judge" "${pictures:-drive}" $$ <&6 >&"$to_window" 3<&"$sent" 4>&"$to_answers" &
    judge=$!
    exec 6<&"$script" 7>&"$to_judge" 8<&"$answers"
    exec {to_window}>&- {script}<&- {to_judge}>&- {sent}<&- {to_answers}>&- {answers}<&-
    IFS= read -r -u 8 word
    status=2
    if [[ $word == ready ]]; then
        kept+=(--keep 6 --keep 7 --keep 8)
        run_on_device "$1" --drive 6:7:8 "${@:2}"
        status=$?
    fi
    exec 6<&- 7>&- 8<&-
    wait "$judge"
    return "$status"
}

# open_pipe TO FROM: a pipe, the descriptors of whose ends are left in the variables of these names.
open_pipe() {
    local -n to=$1 from=$2
    local both
    exec {both}<> <(:)
    # shellcheck disable=SC2034 # the caller's
    exec {to}>"/dev/fd/$both" {from}<"/dev/fd/$both"
    exec {both}>&-
}
