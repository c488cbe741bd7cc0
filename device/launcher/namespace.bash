# Running a command on the device: in a mount namespace in which the device's folders have the
# phone's paths, or, where that is not permitted, against the device's folder without isolation.
# shellcheck shell=bash

isolated=
system=()                 # the desktop's system folders, read-only
shared=()                 # what the command at hand is given beyond the device
variables=()              # the same for a command without isolation, as NAME=VALUE
given=()                  # files of the desktop for the command, as options of confine
kept=()                   # descriptors that the command is given, as options of confine
output=visible            # how its output is passed on, see confine
streams=()                # what else confine is told of its streams
network=(--unshare-net)   # empty where the network is shared
memory=(--unshare-ipc)    # empty where shared memory is needed with the desktop
read_only=                # not empty where a command may only look at the device
touched=                  # not empty when a command may have written on the device
start_folder=/var/mobile  # where a command starts
packing_programs=()       # what a command that only packs is given of the system

check_surroundings() {
    local tool missing=()
    for tool in bash zip flock; do
        type -P "$tool" >/dev/null || missing+=("$tool")
    done
    ((${#missing[@]} == 0)) || fail "please install: ${missing[*]/flock/util-linux}"
    [[ -x $confine ]] || fail "$confine is missing: incomplete build"
    [[ -x $libexec/ipainstaller ]] || fail "$libexec/ipainstaller is missing: incomplete build"
    [[ -d ${TMPDIR:-/tmp} && -w ${TMPDIR:-/tmp} ]] ||
        fail "temporary files have no place: ${TMPDIR:-/tmp} is no folder that can be written"
}

# Isolation is given up for three reasons only: the person says so, bubblewrap is not there, or the
# system forbids namespaces to the person for good. Whatever else is in the way may be a device's
# doing, and ends the command.
choose_isolation() {
    local words reason
    isolated=
    if [[ -n ${DUBRIX_NO_NAMESPACE-} ]]; then
        say "DUBRIX_NO_NAMESPACE is set: running without isolation"
    elif ! type -P bwrap >/dev/null; then
        say "bubblewrap is not installed: running without isolation"
    else
        bind_system
        if words=$("$confine" -- "${system[@]}" --unshare-net -- true 2>&1); then
            isolated=yes
        elif reason=$("$confine" --why-not); then
            say "namespaces are not permitted here ($reason): running without isolation"
        else
            fail "cannot isolate the device${reason:+ ($reason)}: ${words##*$'\n'}"
        fi
    fi
}

# Ends the launcher where an application would be installed without isolation and nobody said that
# it may.
require_isolation() {
    [[ -n $isolated || -n $without_isolation || -n ${DUBRIX_NO_NAMESPACE-} ]] ||
        fail "nothing is installed without isolation, unless --without-isolation is given"
}

# Capabilities are dropped for root only; nobody else has any in the namespace.
bind_system() {
    local path
    system=(--unshare-pid --unshare-uts --unshare-cgroup-try --die-with-parent --cap-drop ALL)
    ((EUID == 0)) || system+=(--unshare-user)
    packing_programs=("${system[@]}" --unshare-ipc --unshare-net --ro-bind-try /usr /usr
        --ro-bind-try /etc/ld.so.cache /etc/ld.so.cache)
    for path in /usr /etc /opt /sys; do
        system+=(--ro-bind-try "$path" "$path")
    done
    local places=() links=() targets=() index
    for path in /bin /sbin /lib /lib32 /lib64 /libx32; do
        [[ -L $path ]] && links+=("$path") || places+=(--ro-bind-try "$path" "$path")
    done
    # In one go: each program that is started takes a millisecond of the launcher's sixty.
    mapfile -d '' -t targets < <(readlink -z -- "${links[@]}" 2>/dev/null)
    for index in "${!targets[@]}"; do
        places+=(--symlink "${targets[index]}" "${links[index]}")
    done
    packing_programs+=("${places[@]}" --proc /proc --dev /dev)
    system+=("${places[@]}" --proc /proc --dev /dev --tmpfs /run --perms 0700 --dir /run/mobile)
    # Root may write kernel settings even without capabilities.
    ((EUID != 0)) || system+=(--ro-bind /proc/sys /proc/sys
        --ro-bind-try /proc/sysrq-trigger /proc/sysrq-trigger)
    # Which keys there are, and whose, is the desktop's own affair.
    for path in /proc/keys /proc/key-users; do
        [[ ! -e $path ]] || system+=(--ro-bind /dev/null "$path")
    done
}

device_bindings() {
    bindings=(--bind "$device/tmp" /tmp --bind "$device/var" /var
        --bind "$device/Applications" /Applications --ro-bind "$libexec" /dubrix)
    [[ -z $read_only ]] || bindings=(--tmpfs /tmp --ro-bind "$device/var" /var
        --ro-bind "$device/Applications" /Applications --ro-bind "$libexec" /dubrix)
    local place=$device/Applications/Dubrix.app
    if [[ -d $place && ! -L $place && -d $share/Dubrix.app ]]; then
        bindings+=(--ro-bind "$share/Dubrix.app" /Applications/Dubrix.app)
    fi
}

device_environment() {
    local library=/var/mobile/Library name
    environment=(--clearenv --setenv HOME /var/mobile --setenv SHELL /bin/bash --setenv TMPDIR /tmp
        --setenv PATH /run/mobile/bin:/dubrix:/usr/local/bin:/usr/bin:/bin --setenv ZIPOPT -0y
        --setenv XDG_CACHE_HOME "$library"/Caches --setenv XDG_CONFIG_HOME "$library"/Config
        --setenv XDG_DATA_HOME "$library"/Data --setenv XDG_RUNTIME_DIR /run/mobile)
    while read -r name; do
        case $name in
        LANG | LANGUAGE | LC_* | TERM | COLORTERM | TZ | QT_* | QTWEBENGINE_DISABLE_SANDBOX)
            environment+=(--setenv "$name" "${!name}")
            ;;
        esac
    done < <(compgen -e)
    # The web engine's own sandbox refuses to work for root.
    ((EUID != 0)) || environment+=(--setenv QTWEBENGINE_DISABLE_SANDBOX 1)
}

# Web pages: the network itself, and the name servers' file where it is kept outside of /etc.
share_network() {
    network=()
    local resolver
    resolver=$(readlink -f /etc/resolv.conf)
    [[ $resolver != /run/* ]] || shared+=(--ro-bind-try "$resolver" "$resolver")
}

set_variable() {
    shared+=(--setenv "$1" "$2")
    variables+=("$1=$2")
}

# The whole command line of COMMAND in the namespace, in `line`: what confine is told stands before
# what bubblewrap is told. `session` is empty where the command gets a terminal.
namespace_line() {
    local bindings environment
    device_bindings
    device_environment
    line=("$confine" "${confining[@]}" "${given[@]}" "${kept[@]}" -- "${system[@]}"
        "${network[@]}" "${memory[@]}" "${bindings[@]}" "${environment[@]}" "${shared[@]}"
        --chdir "$start_folder" --remount-ro / "${session[@]}" -- "$@")
}

# Runs a program of the device with its arguments; gives its exit status.
run_on_device() {
    [[ -x $libexec/$1 ]] || fail "$libexec/$1 is missing: incomplete build"
    local line session=(--new-session) confining=(--output "$output" "${streams[@]}" --device "$device")
    local program=("$@")
    if [[ -z $read_only ]]; then
        require_writable
        touched=yes
    fi
    if [[ -n $isolated ]]; then
        if [[ $1 == dubrix-app ]]; then
            confining+=(--web-pages)
            program+=(--command-filter /command-filter)
        fi
        namespace_line "${program[@]}"
    else
        line=("$confine" --bare "${confining[@]}" "${given[@]}" "${kept[@]}" --
            env "PATH=$libexec:$PATH" ZIPOPT=-0y "${variables[@]}"
            "$libexec/$1" --root "$device" "${@:2}")
        ((EUID != 0)) || line=(env QTWEBENGINE_DISABLE_SANDBOX=1 "${line[@]}")
    fi
    run_child "${line[@]}"
}

# A shell at a terminal gets one of its own, so that nothing on the device reaches the person's: what
# is typed there, its settings, its queue of input.
shell_on_device() {
    local line session=() confining=(--output shell)
    if [[ -t 0 && -t 1 && -t 2 ]]; then
        confining=(--terminal)
    else
        session=(--new-session)
        # Keys typed at a terminal are for whoever reads the output, unless there is nothing else
        # to read.
        [[ -t 0 && $# != 0 ]] || confining+=(--input)
    fi
    require_writable
    touched=yes
    set_variable INPUTRC /dev/null
    if [[ -n $isolated ]]; then
        namespace_line /bin/bash --norc "$@"
    else
        cd -- "$device" || exit 1
        line=("$confine" --bare "${confining[@]}" --
            env "PATH=$libexec:$PATH" ZIPOPT=-0y "DUBRIX_ROOT=$device" INPUTRC=/dev/null
            "BASH_ENV=$libexec/device-paths.bash"
            /bin/bash --rcfile "$libexec/device-paths.bash" "$@")
    fi
    if [[ ${confining[0]} == --terminal ]]; then
        run_in_own_terminal "${line[@]}"
    else
        run_child "${line[@]}"
    fi
}

run_in_own_terminal() {
    local settings status
    type -P script >/dev/null || fail "please install: util-linux (the program script)"
    settings=$(stty -g)
    run_child env SHELL=/bin/bash script --quiet --return --flush \
        --command "exec $(printf '%q ' "$@")" /dev/null
    status=$?
    # Answers of the terminal to what was printed last, and keys meant for the shell, are nobody's
    # now.
    while IFS= read -r -s -t 0.05 -n 4096 -d '' _; do :; done
    stty "$settings"
    return "$status"
}

# No program that serves whoever starts it with this person's rights stays on the device. (No command
# can make one there; files from elsewhere or from before may be such.)
forget_set_ids() {
    [[ -z $touched ]] || find "$device" -xdev -type f -perm /6000 -exec chmod ug-s -- {} +
    touched=
}
