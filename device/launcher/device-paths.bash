# Commands that speak the phone's absolute paths, on a desktop where the device is the folder
# DUBRIX_ROOT and nothing isolates it: bash reads this file through BASH_ENV.
# shellcheck shell=bash

# Gives, in `mapped`, the arguments with each absolute path below /tmp, /var and /Applications moved
# below DUBRIX_ROOT. ".." is taken out of such paths by their text, so that none climbs out; out of
# relative ones as well, when the working folder is on the device.
dubrix_map_paths() {
    mapped=()
    local argument
    for argument; do
        case $argument in
        "$DUBRIX_ROOT" | "$DUBRIX_ROOT"/*) ;;
        /tmp | /tmp/* | /var | /var/* | /Applications | /Applications/*)
            dubrix_without_dots "$argument"
            argument=$DUBRIX_ROOT$plain
            ;;
        /*) ;;
        .. | ../* | */.. | */../*)
            if [[ $PWD/ == "$DUBRIX_ROOT"/* ]]; then
                dubrix_without_dots "${PWD#"$DUBRIX_ROOT"}/$argument"
                argument=$DUBRIX_ROOT$plain
            fi
            ;;
        esac
        mapped+=("$argument")
    done
}

dubrix_without_dots() {
    local part parts kept=()
    IFS=/ read -r -d '' -a parts < <(printf '%s\0' "${1%/}")
    for part in "${parts[@]}"; do
        case $part in
        '' | .) ;;
        ..) ((${#kept[@]} == 0)) || unset 'kept[-1]' ;;
        *) kept+=("$part") ;;
        esac
    done
    printf -v plain '/%s' "${kept[@]}"
    [[ $1 != */ ]] || plain+=/
}

cd() {
    local mapped plain
    dubrix_map_paths "$@"
    builtin cd "${mapped[@]}" || return
}

cp() {
    local mapped plain
    dubrix_map_paths "$@"
    command cp "${mapped[@]}"
}

zip() {
    local mapped plain
    dubrix_map_paths "$@"
    command zip "${mapped[@]}"
}

ipainstaller() {
    local mapped plain
    dubrix_map_paths "$@"
    command ipainstaller --root "$DUBRIX_ROOT" "${mapped[@]}"
}
