# The desk: what a window on the device asks of the desktop side. The window reaches neither the
# desktop's files nor, from the home screen, the device's: it asks through one pipe, is answered
# through another, and everything goes the way of the launcher's own commands, each request in a
# namespace of its own. See windows/Desk.h for what is said.
# shellcheck shell=bash

desk_folder= # where the desk's pipes are
claim=       # the same, while it is claimed for this launcher
server=

# claim_window WINDOW LINE...: one window of a kind for each device. False where another launcher has
# it: the lines are told the window that it has opened.
claim_window() {
    local window=$1
    shift
    until claim_instance "$window"; do
        ! tell_window "$@" || return 1
    done
}

# claim_instance WINDOW: descriptor 9 holds the claim. False where another launcher has it, in the
# folder `desk_folder`.
claim_instance() {
    local folder=${XDG_RUNTIME_DIR-} tries=0
    [[ -d $folder && -O $folder ]] || folder=${TMPDIR:-/tmp}
    folder=$folder/dubrix-$UID
    desk_folder=
    # One that ends removes the folders, perhaps just now.
    while ((++tries <= 20)); do
        mkdir -m 700 -- "$folder" 2>/dev/null
        # Where others may write, a folder of this name can be anybody's.
        [[ -d $folder && ! -L $folder && -O $folder ]] || continue
        claim=$folder/$1-$(printf %s "$device" | sha256sum | cut -c 1-16)
        mkdir -- "$claim" 2>/dev/null
        { exec 9>"$claim/claim"; } 2>/dev/null || continue
        desk_folder=$claim
        if ! flock -n 9; then
            exec 9>&-
            claim=
            return 1
        fi
        [[ ! /dev/fd/9 -ef $claim/claim ]] || return 0
    done
    claim='' desk_folder=''
}

# Whoever finds the file without its name knows that it is none any more.
release_claim() {
    [[ -n $claim ]] || return 0
    rm -rf -- "$claim"
    rmdir -- "${claim%/*}" 2>/dev/null
    exec 9>&-
    claim='' desk_folder=''
}

# tell_window LINE...: to the window whose desk is in `desk_folder`. It may be about to open, or have
# ended just now: then it is told nothing.
tell_window() {
    local tries=0
    until [[ -p $desk_folder/answers ]]; do
        [[ -e $desk_folder/claim ]] || return
        ((++tries <= 100)) || fail "the window that is open does not answer"
        read -r -t 0.1 <> <(:)
    done
    printf '%s\n' "$@" 1<>"$desk_folder/answers"
}

# open_desk VERB...: serves requests of these kinds.
# Before anything of the desktop is shared with the window: its requests must not be served with that.
# A process group of its own lets an interrupted launcher end all that is being served.
open_desk() {
    if [[ -z $desk_folder ]]; then
        make_scratch
        desk_folder=$scratch
    fi
    rm -f -- "$desk_folder"/{requests,answers,new-answers}
    mkfifo -- "$desk_folder"/{requests,new-answers} || fail "cannot make pipes in $desk_folder"
    set -m
    serve_desk "$@" <"$desk_folder/requests" >"$desk_folder/new-answers" 9>&- &
    set +m
    server=$!
    exec 4>"$desk_folder/requests" 3<"$desk_folder/new-answers"
    # What others write into it from now on stays there for the window.
    mv -- "$desk_folder"/{new-answers,answers}
    kept+=(--keep 3 --keep 4)
}

# What is being done is brought to its end: the server ends when nobody can ask any more. Meanwhile
# another launcher may open the window again.
close_desk() {
    [[ -n $server ]] || return 0
    exec 3<&- 4>&-
    remove_pipes
    release_claim
    wait "$server"
    server=
}

stop_desk() {
    [[ -z $server ]] || kill -TERM -- "-$server" 2>/dev/null
    [[ -z $server ]] || remove_pipes
    release_claim
}

remove_pipes() {
    [[ -z $desk_folder ]] || rm -f -- "$desk_folder"/{requests,answers}
}

# The program between judges what is asked: device/judge/Requests.h. What can be put back is kept as
# long as the window that may ask for it; one that was killed has left it.
serve_desk() {
    trap - EXIT HUP INT TERM
    [[ " $* " != *" restore "* ]] || forget_removed
    "$libexec/dubrix-judge" requests $$ "$desk_folder" "$@" | serve_requests
    [[ " $* " != *" restore "* ]] || forget_removed
}

forget_removed() {
    [[ ! -d $device/var/containers/Bundle/Removed ]] ||
        (run_on_device ipainstaller -d) </dev/null &>/dev/null # which ends where nothing can be written
}

serve_requests() {
    local verb argument
    while IFS= read -r -d '' verb && IFS= read -r -d '' argument; do
        case $verb in
        install | remove | restore | export) answer "desk_$verb" "$argument" </dev/null ;;
        start) desk_start ;;
        *) printf 'failed\tunknown request\n' ;;
        esac
    done
}

# answer COMMAND...: judges what the command says, line by line, and passes on how far it is and the
# fields of its last word. A title would tell a window that a file is there, and is kept back. Where
# the fields say nothing, the last line of the errors is the reason of a failure.
answer() {
    local line well='' badly='' status='' errors progress=visible report=fields
    errors=$(mktemp) || return
    while IFS= read -r line; do
        case ${line%%$'\t'*} in
        installed | replaced | removed | kept | back | saved) well=$line ;;
        failed) badly=$line ;;
        'status '*) status=${line#status } ;; # its last word: bash 5.2 sometimes forgets it
        'progress '*)
            [[ ! $line =~ ^progress\ ([0-9]{1,3})$ ]] ||
                printf 'progress\t%s\n' "${BASH_REMATCH[1]}"
            ;;
        esac
    done < <(
        ("$@" 2>"$errors")
        echo "status $?"
    )
    if [[ $status == 0 ]]; then
        printf '%s\n' "${well:-failed}"
    else
        [[ -n $badly ]] || badly=$(failure "$(tail -n 1 -- "$errors")")
        printf '%s\n' "$badly"
    fi
    rm -f -- "$errors"
}

# failure TEXT: the fields that tell of one.
failure() {
    printf 'failed\t%s\n' "$(printf %s "${1#dubrix: }" | tr '[:cntrl:]' ' ')"
}

# Why a file is refused is told only of what is an application's archive: a window is not to learn
# which other files there are.
desk_install() {
    local asked=asked- status
    scratch=
    trap drop_scratch EXIT
    (install_archives "$1")
    status=$?
    ((status != 66 && status != 3)) ||
        failure "${1##*/} is not an application archive that can be read"
    return "$status"
}

desk_remove() {
    run_on_device ipainstaller --report "$report" -U -- "$1"
}

desk_restore() {
    run_on_device ipainstaller --report "$report" -r -- "$1"
}

# Saves the application in the person's own folder, over nothing that is there; the last word is where.
desk_export() {
    local placing=new- folder
    folder=$(downloads) || return
    export_archive "$1" "$folder/$(name_of "$1").ipa"
}

downloads() {
    local folder=
    ! type -P xdg-user-dir >/dev/null || folder=$(xdg-user-dir DOWNLOAD)
    [[ -d $folder && ! $folder -ef $HOME ]] || folder=$HOME/Downloads
    [[ -d $folder ]] || folder=$HOME
    [[ -n $folder ]] || fail "there is no folder of downloads: HOME is not set"
    printf '%s\n' "$folder"
}

# What a file is called after an application: its name, as far as that can be a file's and is nobody's
# hidden one, else its identifier.
name_of() {
    local identifier name
    while IFS=$'\t' read -r identifier name _; do
        [[ $identifier == "$1" ]] || continue
        name=${name//\//-}
        name=$(cut -c 1-60 <<<"${name##[. -]}")
        [[ -z $name || $name == .* ]] || { printf '%s\n' "$name" && return; }
    done < <(run_on_device ipainstaller -l)
    printf '%s\n' "$1"
}

# The application outlives the window that asked for it, but not a launcher that is interrupted.
desk_start() {
    "$self" --device "$device" ${appearance:+--appearance "$appearance"} ${verbose:+--verbose} \
        </dev/null >&2 &
    echo started
}
