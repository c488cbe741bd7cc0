# The device's folder: recognising it, making it whole or not at all.
# shellcheck shell=bash

is_device() {
    local folder
    for folder in var tmp Applications; do
        [[ -d $1/$folder && ! -L $1/$folder ]] || return
    done
    [[ -d $1/var/containers/Bundle/Registry ]]
}

is_missing_or_empty() {
    [[ ! -e $1 ]] || { [[ -d $1 ]] && [[ -z $(ls -A -- "$1") ]]; }
}

# Leaves `device` a usable device or ends the launcher.
open_device() {
    check_surroundings
    choose_isolation
    if ! is_device "$device"; then
        if is_missing_or_empty "$device"; then
            make_device
        elif ! is_device "$device"; then # nor has become one meanwhile
            mistake "$device is neither empty nor a device"
        fi
    fi
    require_own_device
}

# What lies on a device is its owner's alone: what others could change while it is used, or read or
# start there, would be theirs to use against its owner.
require_own_device() {
    [[ -O $device ]] || fail "$device belongs to another user"
    [[ $(stat -c %a -- "$device") != 700 ]] || return 0
    chmod 700 -- "$device"
    [[ $(stat -c %a -- "$device") == 700 ]] ||
        fail "$device cannot be closed to other users"
    say "$device was open to other users and is closed to them now"
}

# Ends the launcher where a command would write on a device that only can be read.
require_writable() {
    local folder
    for folder in "$device"/{tmp,var,Applications}; do
        [[ -w $folder ]] || fail "$device cannot be written"
    done
}

# Built beside its place and renamed. When another launcher was faster, the rename meets a folder
# that is not empty any more and fails; the other's device is used then.
make_device() {
    local final=$device parent
    parent=$(dirname -- "$final")
    device=
    if mkdir -p -- "$parent" && begin_scratch "$parent/.dubrix"; then
        device=$scratch/device
    fi
    make_folders "$device" || fail "cannot make a device in $parent"
    [[ -z $with_samples ]] || install_samples || fail "the samples could not be installed"
    if ! mv -fT -- "$device" "$final" 2>/dev/null && ! is_device "$final"; then
        fail "cannot put a device at $final"
    fi
    device=$final
    drop_scratch
}

# Applications/Dubrix.app is the place on which the application's own bundle is mounted.
make_folders() {
    [[ -n $1 ]] && mkdir -m 700 -- "$1" && mkdir -p -- "$1/tmp" "$1/Applications/Dubrix.app" \
        "$1"/var/containers/Bundle/{Application,Registry} \
        "$1"/var/mobile/Library/{Preferences,Caches,Config,Data}
}

install_samples() {
    local samples=("$share"/samples/*.app)
    [[ -d ${samples[0]} ]] || return
    without_isolation=yes install_archives "${samples[@]}" >/dev/null && choose_application "${samples[0]##*/}"
}

# Makes the installed bundle of the given folder name the application to duplicate.
choose_application() {
    local identifier name _version path
    local settings=$device/var/mobile/Library/Preferences/com.q7r2m.dubrix2.plist
    while IFS=$'\t' read -r identifier name _version path; do
        [[ ${path##*/} == "$1" ]] || continue
        write_settings "$identifier" "$name" >"$settings"
        return
    done < <(run_on_device ipainstaller -l)
    return 1
}

write_settings() {
    cat <<EOS
<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>bundleID</key>
	<string>$(escape_xml "$1")</string>
	<key>appName</key>
	<string>$(escape_xml "$2")</string>
</dict>
</plist>
EOS
}

escape_xml() {
    sed 's/&/\&amp;/g; s/</\&lt;/g; s/>/\&gt;/g' <<<"$1"
}
