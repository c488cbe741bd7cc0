# Duplicates without a window: what the program on the device is told, and archives that come of it.
# shellcheck shell=bash

# terminal_command COMMAND ARGUMENT...
terminal_command() {
    local plan words=() arguments=() archives=() target='' single='' json='' agreed='' status=0
    [[ -x $libexec/dubrix-terminal ]] || fail "$libexec/dubrix-terminal is missing: incomplete build"
    mapfile -d '' -t plan < <("$libexec/dubrix-terminal" --plan "$@")
    wait $! || exit 2
    set -- "${plan[@]}"
    while (($#)); do
        case $1 in
        word) words+=("$2") ;;
        argument) arguments+=("$2") ;;
        archive) archives+=("$2") ;;
        output) target=$2 ;;
        single) single=yes ;;
        json) json=yes ;;
        yes) agreed=yes ;;
        esac
        shift 2
    done
    [[ -z $target ]] || check_target
    local archive
    for archive in "${archives[@]}"; do
        [[ -f $archive && -r $archive ]] || mistake "cannot read $archive"
    done
    case ${words[0]}${#arguments[@]} in
    status* | list* | settings0) read_only=yes ;;
    esac
    if [[ -z $target ]]; then
        open_device
        run_terminal "${words[@]}" ${json:+--json} -- "${arguments[@]}"
        return
    fi
    make_scratch
    : >"$scratch/lines"
    if ((${#archives[@]} == 0 || ${#arguments[@]} > 0)); then
        open_device
        duplicate_installed "${arguments[@]}" >>"$scratch/lines"
        status=$?
    fi
    ((${#archives[@]} == 0)) || duplicate_archives "${archives[@]}" >>"$scratch/lines" || status=$?
    if [[ -n $json ]]; then
        "$libexec/dubrix-terminal" --json <"$scratch/lines"
    else
        cat -- "$scratch/lines"
    fi
    return "$status"
}

# Leaves in `target` the folder where archives go, with a slash at its end, or the file for the only
# one that there can be.
check_target() {
    local wanted=$target folder
    if [[ -d $wanted ]]; then
        target=$(realpath -- "$wanted")/
        [[ -w $target ]] || fail "$wanted cannot be written"
        return
    fi
    [[ $wanted != */ ]] || mistake "no such folder: $wanted"
    folder=$(dirname -- "$wanted")
    [[ -n $single ]] || mistake "several archives need a folder: $wanted is none"
    [[ -d $folder ]] || mistake "no such folder: $folder"
    target=$(realpath -- "$folder")/$(basename -- "$wanted")
}

# run_terminal WORD...: the program with the person's answers. It ends its work by itself when it is
# asked to.
run_terminal() {
    local options=(--stop 11) streams=(--stoppable) output=progress
    if [[ -t 0 && -t 2 ]]; then
        options+=(--answered)
        streams+=(--input)
    fi
    [[ ! -t 2 ]] || options+=(--progress)
    run_on_device dubrix-terminal "${options[@]}" "$@"
}

# duplicate_installed SOURCE...: the lines of what was made, with the archives.
duplicate_installed() {
    local status
    run_terminal "${words[@]}" -- "$@" >"$scratch/made"
    status=$?
    pack_made '' <"$scratch/made" || status=1
    return "$status"
}

# pack_made NAME: each duplicate of the lines as an archive, called after its identifier, or NAME and
# its number; the lines with it at their ends. What stands in them is the device's: the identifier goes
# to the device's own installer, and into a name only as one part of a path.
pack_made() {
    local line number identifier archive status=0
    while IFS= read -r line; do
        number=${line%%$'\t'*}
        identifier=${line#*$'\t'}
        identifier=${identifier%%$'\t'*}
        archive=$target
        if [[ $target == */ ]]; then
            archive=$target$identifier.ipa
            [[ -z $1 ]] || archive="$target$1 $number.ipa"
        fi
        if [[ ! $number =~ ^[0-9]{1,3}$ || $identifier == */* || ! $line == *$'\t' ]] ||
            ! export_archive "$identifier" "$archive" <&- >&2; then
            say "no archive of $identifier"
            archive='' status=1
        fi
        printf '%s%s\n' "$line" "$archive"
    done
    return "$status"
}

# duplicate_archives FILE...: several at a time where nothing is asked.
duplicate_archives() {
    local file status=0 number=0
    if (($# == 1)) || [[ -z $agreed ]]; then
        for file; do
            duplicate_archive "$file" || status=$?
        done
        return "$status"
    fi
    for file; do
        if ((${#errands[@]} >= $(nproc))); then
            wait_for_errand || status=$?
        fi
        ((++number))
        "$self" ${without_isolation:+--without-isolation} "${words[@]}" --output "$target" \
            -- "$file" </dev/null >"$scratch/lines-$number" &
        errands+=("$!")
    done
    while ((${#errands[@]} > 0)); do
        wait_for_errand || status=$?
    done
    for ((file = 1; file <= number; ++file)); do
        cat -- "$scratch/lines-$file"
    done
    return "$status"
}

wait_for_errand() {
    wait "${errands[0]}"
    local status=$?
    errands=("${errands[@]:1}")
    return "$status"
}

# duplicate_archive FILE: on a device of its own, of which nothing is left.
duplicate_archive() {
    local name status=1 identifier device=$scratch/device with_samples='' touched=''
    check_tools
    [[ -n $isolated ]] || choose_isolation
    name=$(basename -- "$1")
    make_folders "$device" || fail "cannot make a device in $scratch"
    if install_archives "$1" >/dev/null; then
        identifier=$(run_on_device ipainstaller -l | cut -f 1)
        run_terminal "${words[@]}" -- "$identifier" >"$scratch/made"
        status=$?
        pack_made "${name%.*}" <"$scratch/made" || status=1
    fi
    chmod -Rf u+rwX -- "$device"
    rm -rf --one-file-system -- "$device"
    return "$status"
}
