# Addresses of web pages and mail that the application hands to the system: the desktop's own
# programs open them, outside of the device.
# shellcheck shell=bash

opener=

# On the device xdg-open stands for the desktop's and writes into a pipe, whose other end judges what
# comes and lets a flood pass by (device/judge/Addresses.h, AddressQueue.h).
share_addresses() {
    [[ -n $isolated ]] || return 0
    make_scratch
    mkfifo -- "$scratch/addresses" || return 0
    "$libexec/dubrix-judge" addresses $$ "$scratch/addresses" "$desk_folder/answers" \
        </dev/null >/dev/null &
    opener=$!
    shared+=(--bind "$scratch/addresses" /run/mobile/addresses
        --ro-bind "$libexec/launcher/xdg-open" /run/mobile/bin/xdg-open)
}

# What was handed over before is opened, unless it would have to wait.
forget_addresses() {
    if [[ -n $opener ]]; then
        kill -TERM "$opener" 2>/dev/null
        wait "$opener"
    fi
    opener=
}
