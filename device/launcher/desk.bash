# The desk: what a window on the device asks of the desktop side. The window reaches neither the
# desktop's files nor, from the home screen, the device's: it asks through one pipe, is answered
# through another, and everything goes the way of the launcher's own commands, each request in a
# namespace of its own. See device/desk/Desk.h for what is said.
# shellcheck shell=bash disable=SC2034,SC2154 # device, scratch and the like are the launcher's

desk_folder= # where the desk's pipes are
server=

# claim_instance WINDOW: one window of a kind for each device. False, and the other one brought to the
# front, where another launcher has it. Descriptor 9 holds the claim.
claim_instance() {
    local folder=${XDG_RUNTIME_DIR-}
    [[ -d $folder && -O $folder ]] || folder=${TMPDIR:-/tmp}
    folder=$folder/dubrix-$UID
    mkdir -m 700 -- "$folder" 2>/dev/null
    # Where others may write, a folder of this name can be anybody's.
    [[ -d $folder && ! -L $folder && -O $folder ]] || return 0
    folder=$folder/$1-$(printf %s "$device" | sha256sum | cut -c 1-16)
    mkdir -p -- "$folder" && exec 9>"$folder/claim" || return 0
    if ! flock -n 9; then
        [[ ! -p $folder/answers ]] || echo raise 1<>"$folder/answers"
        return 1
    fi
    desk_folder=$folder
}

# open_desk VERB...: serves requests of these kinds.
# Before anything of the desktop is shared with the window: its requests must not be served with that.
# A process group of its own lets an interrupted launcher end all that is being served.
open_desk() {
    if [[ -z $desk_folder ]]; then
        make_scratch
        desk_folder=$scratch
    fi
    rm -f -- "$desk_folder"/{requests,answers}
    mkfifo -- "$desk_folder"/{requests,answers} || fail "cannot make pipes in $desk_folder"
    set -m
    serve_desk "$@" <"$desk_folder/requests" >"$desk_folder/answers" 9>&- &
    set +m
    server=$!
    exec 4>"$desk_folder/requests" 3<"$desk_folder/answers"
    kept+=(--keep 3 --keep 4)
}

# What is being done is brought to its end: the server ends when nobody can ask any more.
close_desk() {
    [[ -n $server ]] || return 0
    exec 3<&- 4>&-
    wait "$server"
    server=
    rm -f -- "$desk_folder"/{requests,answers}
}

stop_desk() {
    [[ -n $server ]] || return 0
    kill -TERM -- "-$server" 2>/dev/null
    rm -f -- "$desk_folder"/{requests,answers}
}

# The program between judges what is asked: device/judge/Requests.h.
serve_desk() {
    trap - EXIT HUP INT TERM
    "$libexec/dubrix-judge" requests $$ "$desk_folder" "$@" | serve_requests
}

serve_requests() {
    local verb argument
    while IFS= read -r -d '' verb && IFS= read -r -d '' argument; do
        case $verb in
        install | remove | export) answer "desk_$verb" "$argument" </dev/null ;;
        start) desk_start ;;
        *) echo "failed unknown request" ;;
        esac
    done
}

# answer COMMAND...: passes its progress on, then its last word: of its output when it went well, else
# of its errors.
answer() {
    local line last='' errors
    errors=$(mktemp) || return
    { ("$@") 2>"$errors" && echo well || echo badly; } | while IFS= read -r line; do
        case $line in
        'progress '*) echo "$line" ;;
        well) echo "done $last" ;;
        badly) echo "failed $(last_error "$errors")" ;;
        *) last=$line ;;
        esac
    done
    rm -f -- "$errors"
}

last_error() {
    tail -n 1 -- "$1" | sed 's/^\(ipainstaller\|dubrix\): //; s/ (see dubrix --help)$//'
}

# Why a file is refused is told only of what is an application's archive: a window is not to learn
# which other files there are.
desk_install() {
    local progress=visible asked=asked- status errors
    scratch=
    trap drop_scratch EXIT
    make_scratch
    errors=$scratch/errors
    (install_archives "$1") 2>"$errors"
    status=$?
    if ((status == 66 || status == 3)); then
        say "${1##*/} is not an application archive that can be read"
    else
        cat -- "$errors" >&2
    fi
    return "$status"
}

desk_remove() {
    run_on_device ipainstaller -u -- "$1"
}

# Saves the application in the person's own folder, over nothing that is there; the last word is where.
desk_export() {
    local progress=visible placing=new- folder
    folder=$(downloads)
    export_archive "$1" "$folder/$(name_of "$1").ipa"
}

downloads() {
    local folder=
    ! type -P xdg-user-dir >/dev/null || folder=$(xdg-user-dir DOWNLOAD)
    [[ -d $folder && ! $folder -ef $HOME ]] || folder=$HOME/Downloads
    [[ -d $folder ]] || folder=$HOME
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
    "$self" --device "$device" ${appearance:+--appearance "$appearance"} </dev/null >&2 &
    echo "done"
}
