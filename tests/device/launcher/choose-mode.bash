# Arguments BUILD namespace|rooted of a test: prepares the launcher for the mode, or ends the test
# as skipped where namespaces are not permitted.
# shellcheck shell=bash
mode=$2
prepare "$1"
mkdir "$work/temporary"
export TMPDIR=$work/temporary DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere
if [[ $mode == rooted ]]; then
    export DUBRIX_NO_NAMESPACE=1
else
    unset DUBRIX_NO_NAMESPACE
    dubrix --device "$work/probe" list
    if grep -q "without isolation" "$work/err"; then
        echo "skipped: $(<"$work/err")"
        exit 77
    fi
fi
