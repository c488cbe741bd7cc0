# What the launcher's tests share: a private installation with a stand-in for the application, and
# checks that count their failures.
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

# prepare BUILD: installs the launcher of the build tree BUILD into the work folder.
prepare() {
    work=$(mktemp -d "${TMPDIR:-/tmp}/dubrix-launcher-XXXXXX") || exit 1
    trap 'chmod -Rf u+rwX "$work"; rm -rf "$work"' EXIT
    mkdir -p "$work"/prefix/{bin,libexec} "$work/home"
    cp "$1/bin/dubrix" "$work/prefix/bin/" &&
        cp -r "$1/libexec/dubrix" "$work/prefix/libexec/" &&
        ln -s "$1/share" "$work/prefix/share" || exit 1
    local window
    for window in app home; do
        rm -f "$work/prefix/libexec/dubrix/dubrix-$window"
        cp "$(dirname "${BASH_SOURCE[0]}")/stand-in-app" "$work/prefix/libexec/dubrix/dubrix-$window"
    done
    export HOME=$work/home
    unset XDG_DATA_HOME DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM QT_QUICK_BACKEND
}

finish() {
    ((failures == 0)) && echo "passed"
    exit $((failures > 0))
}
