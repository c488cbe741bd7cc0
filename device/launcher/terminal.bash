# Duplicates without a window: what the program on the device is told, and archives that come of it.
# shellcheck shell=bash

at_stop=() # what is still to be said when the work is stopped

# terminal_command COMMAND ARGUMENT...
terminal_command() {
    local plan words=() arguments=() archives=() target='' single='' json='' agreed='' quiet=''
    local status=0 lines errand_kind=errand begun=0 told=0 processors
    [[ -x $libexec/dubrix-terminal ]] || fail "$libexec/dubrix-terminal is missing: incomplete build"
    # No plan is empty. What became of its process is not asked: bash 5.2 sometimes has forgotten it.
    mapfile -d '' -t plan < <("$libexec/dubrix-terminal" --plan "$@")
    ((${#plan[@]} > 0)) || exit 2
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
        quiet) quiet=yes ;;
        esac
        shift 2
    done
    check_archives
    case ${words[0]}${#arguments[@]} in
    status* | list* | settings0) read_only=yes ;;
    esac
    # A device that is made now has a scratch folder of its own.
    ((${#archives[@]} > 0 && ${#arguments[@]} == 0)) || open_device
    if [[ -z $target ]]; then
        run_terminal "${words[@]}" ${json:+--json} -- "${arguments[@]}"
        return
    fi
    check_surroundings
    make_scratch
    processors=$(nproc)
    at_stop=(tell_what_stands)
    if [[ -n $json ]]; then
        exec {lines}>"$scratch/lines"
    else
        exec {lines}>&1
    fi
    if ((${#archives[@]} == 0 || ${#arguments[@]} > 0)); then
        duplicate_and_pack '' "${arguments[@]}"
        status=$?
    fi
    ((${#archives[@]} == 0)) || duplicate_archives "${archives[@]}" || status=$((status > $? ? status : $?))
    [[ -z $json ]] || give_json
    return "$status"
}

give_json() {
    "$libexec/dubrix-terminal" --json <"$scratch/lines"
}

# Leaves in `target` the folder where archives go, with a slash at its end, or the file for the only
# one that there can be. What is there already is never replaced. Names that would act on a line of
# the output have no place in it.
check_archives() {
    local archive name
    local -A taken=()
    for archive in "${archives[@]}" "$target"; do
        [[ $archive != *[[:cntrl:]]* ]] ||
            mistake "control characters in a name: ${archive//[[:cntrl:]]/ }"
    done
    [[ -z $target ]] || check_target
    for archive in "${archives[@]}"; do
        [[ -f $archive && -r $archive ]] || mistake "cannot read $archive"
        name=${archive##*/}
        name=${name%.*}
        [[ -z ${taken[$name]-} ]] ||
            mistake "two archives are called $name: so would be what is made of them"
        taken[$name]=yes
    done
}

check_target() {
    local wanted=$target folder
    if [[ -d $wanted ]]; then
        target=$(realpath -- "$wanted")
        target=${target%/}/
        [[ -w $target ]] || fail "$wanted cannot be written"
        return
    fi
    [[ $wanted != */ ]] || mistake "no such folder: $wanted"
    folder=$(dirname -- "$wanted")
    [[ -n $single ]] || mistake "several archives need a folder: $wanted is none"
    [[ -d $folder ]] || mistake "no such folder: $folder"
    [[ ! -e $wanted && ! -L $wanted ]] || fail "$wanted is there already"
    [[ -w $folder ]] || fail "$folder cannot be written"
    target=$(realpath -- "$folder")
    target=${target%/}/$(basename -- "$wanted")
}

# run_terminal WORD...: the program with the person's answers. It ends its work by itself when it is
# asked to. What begins a line of its output with "progress" is not drawn where nothing but the
# device's own names could.
run_terminal() {
    local options=(--stop 11) streams=(--stoppable) output=progress
    if [[ -n $read_only ]]; then
        output=visible
    elif [[ -t 2 ]]; then
        options+=(--progress)
    fi
    if [[ -t 0 && -t 2 ]]; then
        options+=(--answered)
        streams+=(--input)
    fi
    run_on_device dubrix-terminal "${options[@]}" "$@"
}

# duplicate_and_pack NAME SOURCE...: each duplicate is packed while the next is made.
duplicate_and_pack() {
    local made packer status passing=''
    [[ -z $1 ]] || passing=--passing
    exec {made}> >(pack_made "$1")
    packer=$!
    errands+=("$packer")
    run_terminal ${passing:+"$passing"} "${words[@]}" -- "${@:2}" >&"$made"
    status=$?
    exec {made}>&-
    wait "$packer" || status=$((status > 1 ? status : 1))
    errands=()
    return "$status"
}

# pack_made NAME: packs the duplicates of the lines that it reads, and gives their lines in that order.
pack_made() {
    local line errands=() errand_kind=packed begun=0 told status=0 packing=''
    while [[ -e $scratch/packed-$((begun + 1)) ]]; do
        ((++begun))
    done
    told=$begun
    trap 'heard stop_packing' HUP TERM
    while IFS= read -r line; do
        if [[ -z $single ]]; then
            begin_errand pack_one "$1" "$line" || status=1
        else
            ((++begun))
            packing=yes
            pack_one "$1" "$line" <&- >"$scratch/packed-$begun" || status=1
            give_rest
            packing=
            [[ -z $stopped ]] || exit 1
        fi
    done
    finish_errands || status=1
    return "$status"
}

stop_packing() {
    if [[ -n $packing ]]; then
        stop_export
        return
    fi
    stop_errands
    give_rest
    exit 1
}

# pack_one NAME LINE: the duplicate of the line as an archive, called after its identifier, or NAME
# and its number; the line with it at its end. What stands in it is the device's: the identifier goes
# to the device's own installer, and into a name only as one part of a path.
pack_one() {
    local line=$2 number identifier archive=$target progress=visible
    [[ -n $packing ]] || trap 'heard stop_export' HUP TERM
    # Beside other work there is no room for another bar.
    [[ -z $single || -n $quiet ]] || progress=
    number=${line%%$'\t'*}
    identifier=${line#*$'\t'}
    identifier=${identifier%%$'\t'*}
    if [[ $target == */ ]]; then
        archive=$target$identifier.ipa
        [[ -z $1 ]] || archive="$target$1 $number.ipa"
    fi
    if [[ -e $archive || -L $archive ]]; then
        say "$archive is there already"
        archive=''
    elif [[ ! $number =~ ^[0-9]{1,3}$ || $identifier == */* || ! $line == *$'\t' ]] ||
        ! { export_archive "$identifier" "$archive" >/dev/null || stands "$archive"; }; then
        [[ -z $stopped ]] || return
        say "no archive of $identifier"
        archive=''
    fi
    printf '%s%s\n' "$line" "$archive"
    [[ -n $archive ]]
}

# An archive that is whole when its export is stopped stands, and its line with it: the status of
# what ended as the signal came is lost.
stands() {
    [[ -n $stopped && -e $1 ]]
}

stop_export() {
    stopped=yes
    [[ -z $child ]] || kill -TERM "$child" 2>/dev/null
}

# duplicate_archives FILE...: several at a time where nothing is asked.
duplicate_archives() {
    local file status=0
    if (($# == 1)) || [[ -z $agreed ]]; then
        for file; do
            duplicate_archive "$file" || status=$((status > $? ? status : $?))
            ((status != 2)) || break # there was nobody to ask
        done
        return "$status"
    fi
    for file; do
        begin_errand "$self" ${without_isolation:+--without-isolation} "${words[@]}" \
            --output "$target" -- "$file" || status=$((status > $? ? status : $?))
        [[ ! -t 2 || -n $quiet ]] ||
            printf '\r\033[K%d of %d: %s' "$begun" "$#" "$(basename -- "$file")" >&2
    done
    finish_errands || status=$((status > $? ? status : $?))
    return "$status"
}

# begin_errand COMMAND...: beside as many others as there are processors. What it gives and says is
# kept until it is its turn. Fails as one for which there had to be room did.
begin_errand() {
    local status=0
    if ((${#errands[@]} >= processors)); then
        wait_for_errand
        status=$?
    fi
    at_once note_errand "$@"
    return "$status"
}

note_errand() {
    ((++begun))
    "$@" </dev/null >"$scratch/$errand_kind-$begun" 2>"$scratch/$errand_kind-$begun-said" &
    errands+=("$!")
}

wait_for_errand() {
    wait "${errands[0]}"
    local status=$?
    errands=("${errands[@]:1}")
    at_once give_next
    return "$status"
}

finish_errands() {
    local status=0
    while ((${#errands[@]} > 0)); do
        wait_for_errand || status=$((status > $? ? status : $?))
    done
    return "$status"
}

give_next() {
    local files=$scratch/$errand_kind-$((++told))
    clear_line
    [[ ! -e $files-said ]] || cat -- "$files-said" >&2
    cat -- "$files" >&"$lines"
}

give_rest() {
    while [[ -e $scratch/$errand_kind-$((told + 1)) ]]; do
        give_next
    done
}

# Takes away what shows progress, so that a whole line can stand there.
clear_line() {
    [[ ! -t 2 || -n $quiet ]] || printf '\r\033[K' >&2
}

# Each launcher that works for this one says itself what stands.
tell_what_stands() {
    local archive standing='' number=1
    give_rest
    while [[ -e $scratch/packed-$number ]]; do
        archive=$(<"$scratch/packed-$number")
        archive=${archive##*$'\t'}
        standing+=${archive:+ ${archive##*/}}
        ((++number))
    done
    if [[ -n $standing ]]; then
        say "stopped; archives made before that:$standing"
    elif ((told == 0)); then
        say "stopped; no archive was made"
    fi
    [[ -z $json ]] || give_json
}

# duplicate_archive FILE: on a device of its own, of which nothing is left.
duplicate_archive() {
    local name status=1 identifier device=$scratch/device with_samples='' touched=''
    local progress=${quiet:+visible}
    [[ -n $isolated ]] || choose_isolation
    name=$(basename -- "$1")
    make_folders "$device" || fail "cannot make a device in $scratch"
    if install_archives "$1" >/dev/null; then
        identifier=$(run_on_device ipainstaller -l | cut -f 1)
        duplicate_and_pack "${name%.*}" "$identifier"
        status=$?
    fi
    remove_tree "$device"
    return "$status"
}
