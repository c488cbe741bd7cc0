# Addresses of web pages and mail that an application hands to the system: the desktop's own
# programs open them, outside of the device.
# shellcheck shell=bash disable=SC2154 # isolated, scratch and libexec are the launcher's

opener=

# On the device xdg-open stands for the desktop's and writes into a pipe, which the launcher reads.
share_addresses() {
    [[ -n $isolated ]] && type -P xdg-open >/dev/null || return 0
    make_scratch
    mkfifo -- "$scratch/addresses" || return 0
    open_addresses "$scratch/addresses" &
    opener=$!
    shared+=(--bind "$scratch/addresses" /run/mobile/addresses
        --ro-bind "$libexec/launcher/xdg-open" /run/mobile/bin/xdg-open)
}

# The pipe is opened for reading and writing, so that it does not end with its first writer. The
# desk's pipes are closed here: they must end with the window.
open_addresses() {
    local address
    exec 9<>"$1" </dev/null >/dev/null 3<&- 4>&- 5>&-
    while IFS= read -r -u 9 address && [[ -n $address ]]; do
        case $address in
        http://* | https://* | mailto:*) xdg-open "$address" 9>&- & ;;
        esac
    done
}

# An empty line ends the opener after everything that was handed over before.
forget_addresses() {
    if [[ -n $opener ]] && kill -0 "$opener" 2>/dev/null; then
        echo 1<>"$scratch/addresses"
        wait "$opener"
    fi
    opener=
}
