# What tests of the launcher share: a private installation, with a stand-in for the windows where one
# is asked for, and checks that count their failures.
# shellcheck shell=bash

failures=0
status=

check() { # check WHAT COMMAND...
    if ! "${@:2}"; then
        echo "FAILED: $1" >&2
        ((++failures))
    fi
}

equal() {
    [[ $1 == "$2" ]] || { printf '  expected: %q\n  got:      %q\n' "$2" "$1" >&2 && false; }
}

contains() {
    [[ $1 == *"$2"* ]] || { printf '  expected: %q\n  in:       %q\n' "$2" "$1" >&2 && false; }
}

not() {
    ! "$@"
}

# Runs the launcher; leaves `status`, and its streams in the files out and err.
dubrix() {
    "$work/prefix/bin/dubrix" "$@" >"$work/out" 2>"$work/err"
    # shellcheck disable=SC2034 # for the tests
    status=$?
}

out() {
    cat "$work/out"
}

# From now on the launcher's shell forgets, as bash 5.2 sometimes does by itself, what became of a
# process whose output it has read.
lose_statuses() {
    wait() { builtin wait "$@" && [[ $1 == "${child-}" ]]; }
    export -f wait
}

# ends DESCRIPTOR: whether the pipe ends, for a while after the last that came through it.
ends() {
    local result=0
    while ((result == 0)); do
        read -r -t 20 -u "$1" _
        result=$?
    done
    ((result <= 128))
}

# A folder with all that a copy must keep: kind, permissions, name, link target, bytes.
manifest() {
    (cd "$1" && find . -printf '%P %y %m %l\n' | LC_ALL=C sort &&
        find . -type f -print0 | LC_ALL=C sort -z | xargs -0r sha256sum)
}

escaped() {
    sed 's/&/\&amp;/g; s/</\&lt;/g; s/>/\&gt;/g' <<<"$1"
}

# write_bundle FOLDER IDENTIFIER NAME VERSION: an application to install.
write_bundle() {
    mkdir -p "$1/deep" && echo harmless >"$1/deep/id"
    printf '<plist version="1.0"><dict><key>%s</key><string>%s</string><key>%s</key><string>%s</string>
<key>%s</key><string>%s</string></dict></plist>' CFBundleIdentifier "$(escaped "$2")" \
        CFBundleDisplayName "$(escaped "$3")" CFBundleVersion "$(escaped "$4")" >"$1/Info.plist"
}

# A place for temporary folders: in memory, where nothing waits for the disk and whoever else writes
# there, if programs can be started in it.
in_memory() {
    local place=/dev/shm room options
    read -r room options < <(findmnt -nbo AVAIL,OPTIONS "$place")
    [[ -w $place && $options != *noexec* ]] && ((room > 1 << 30)) || place=/tmp
    echo "${TMPDIR:-$place}"
}

# begin BUILD: a work folder with the build tree's installation and a home of nobody's.
begin() {
    local build
    build=$(realpath "$1")
    work=$(mktemp -d "$(in_memory)/dubrix-launcher-XXXXXX") || exit 1
    trap 'jobs -p | xargs -r kill 2>/dev/null; chmod -Rf u+rwX "$work"; rm -rf "$work"' EXIT
    mkdir -p "$work"/{home,temporary,prefix/bin}
    cp "$build/bin/dubrix" "$work/prefix/bin/" && ln -s "$build"/{libexec,share} "$work/prefix/" || exit 1
    export HOME=$work/home TMPDIR=$work/temporary DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere
    unset XDG_DATA_HOME DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM QT_QUICK_BACKEND DUBRIX_NO_NAMESPACE
}

# Has the test end as skipped where namespaces are not permitted.
require_namespaces() {
    dubrix --device "$work/probe" list
    if grep -q "without isolation" "$work/err"; then
        echo "skipped: $(<"$work/err")"
        exit 77
    fi
}

# use PROGRAM: for both windows from now on.
use() {
    local programs=$work/prefix/libexec/dubrix part
    if [[ -L $work/prefix/libexec ]]; then
        part=$(realpath "$programs")
        rm "$work/prefix/libexec" && mkdir -p "$programs" &&
            cp -r "$part"/{launcher,device-paths.bash,confine,dubrix-judge,dubrix-terminal,ipainstaller,zip} \
                "$programs/" || exit 1
    fi
    cp -f "$1" "$programs/dubrix-app" && cp -f "$1" "$programs/dubrix-home"
}

# prepare BUILD namespace|rooted: the same with the stand-in for windows, for the mode.
prepare() {
    begin "$1"
    use "$(dirname "${BASH_SOURCE[0]}")/stand-in-app"
    mode=$2
    if [[ $mode == rooted ]]; then
        export DUBRIX_NO_NAMESPACE=1
    else
        require_namespaces
    fi
}

finish() {
    ((failures == 0)) && echo "passed"
    exit $((failures > 0))
}
