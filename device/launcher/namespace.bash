# Running a command on the device: in a mount namespace in which the device's folders have the
# phone's paths, or, where that is not permitted, against the device's folder without isolation.
# shellcheck shell=bash disable=SC2154 # device, libexec and share are the launcher's

isolated=
system=()                 # the desktop's system folders, read-only
shared=()                 # what the command at hand is given beyond the device
variables=()              # the same for a command without isolation, as NAME=VALUE
network=(--unshare-net)   # empty where the network is shared
memory=(--unshare-ipc)    # empty where shared memory is needed with the desktop
read_only=                # not empty where a command may only look at the device
start_folder=/var/mobile  # where a command starts

check_tools() {
    local tool missing=()
    for tool in bash zip flock; do
        type -P "$tool" >/dev/null || missing+=("$tool")
    done
    ((${#missing[@]} == 0)) || fail "please install: ${missing[*]/flock/util-linux}"
    [[ -x $libexec/ipainstaller ]] || fail "$libexec/ipainstaller is missing: incomplete build"
}

choose_isolation() {
    isolated=
    if [[ -n ${DUBRIX_NO_NAMESPACE-} ]]; then
        say "DUBRIX_NO_NAMESPACE is set: running without isolation"
    elif ! type -P bwrap >/dev/null; then
        say "bubblewrap is not installed: running without isolation"
    else
        bind_system
        if bwrap "${system[@]}" --unshare-net true 2>/dev/null; then
            isolated=yes
        else
            say "namespaces are not permitted here: running without isolation"
        fi
    fi
}

# Capabilities are dropped for root only; nobody else has any in the namespace.
bind_system() {
    local path
    system=(--unshare-pid --unshare-uts --unshare-cgroup-try --die-with-parent --cap-drop ALL)
    for path in /usr /etc /opt /sys; do
        system+=(--ro-bind-try "$path" "$path")
    done
    for path in /bin /sbin /lib /lib32 /lib64 /libx32; do
        if [[ -L $path ]]; then
            system+=(--symlink "$(readlink -- "$path")" "$path")
        else
            system+=(--ro-bind-try "$path" "$path")
        fi
    done
    system+=(--proc /proc --dev /dev --tmpfs /run --perms 0700 --dir /run/mobile)
    # Root may write kernel settings even without capabilities.
    ((EUID != 0)) || system+=(--ro-bind /proc/sys /proc/sys
        --ro-bind-try /proc/sysrq-trigger /proc/sysrq-trigger)
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

# The whole command line of COMMAND in the namespace, in `line`. `session` is empty where the
# terminal must stay reachable.
namespace_line() {
    local bindings environment
    device_bindings
    device_environment
    line=(bwrap "${system[@]}" "${network[@]}" "${memory[@]}" "${bindings[@]}" "${environment[@]}"
        "${shared[@]}" --chdir "$start_folder" --remount-ro / "${session[@]}" -- "$@")
}

# Runs a program of the device with its arguments; gives its exit status.
run_on_device() {
    [[ -x $libexec/$1 ]] || fail "$libexec/$1 is missing: incomplete build"
    local line session=(--new-session)
    if [[ -n $isolated ]]; then
        namespace_line "$@"
    else
        line=(env "PATH=$libexec:$PATH" ZIPOPT=-0y "${variables[@]}"
            "$libexec/$1" --root "$device" "${@:2}")
        ((EUID != 0)) || line=(env QTWEBENGINE_DISABLE_SANDBOX=1 "${line[@]}")
    fi
    run_child "${line[@]}"
}

shell_on_device() {
    local line session=()
    if [[ -n $isolated ]]; then
        [[ -t 0 ]] || session=(--new-session)
        namespace_line /bin/bash --norc "$@"
    else
        cd -- "$device" || exit 1
        line=(env "PATH=$libexec:$PATH" ZIPOPT=-0y "DUBRIX_ROOT=$device"
            "BASH_ENV=$libexec/device-paths.bash"
            /bin/bash --rcfile "$libexec/device-paths.bash" "$@")
    fi
    exec "${line[@]}"
}
