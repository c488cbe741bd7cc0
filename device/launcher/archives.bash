# Handing files of the desktop to the device's installer: each archive read-only under its own name.
# shellcheck shell=bash

asked=
placing=
report= # "fields" where a program reads what comes of it

check_installable() {
    if [[ -d $1 ]]; then
        [[ $(realpath -- "$1") == *.app ]] ||
            mistake "$1 is not an application: the folder's name must end in .app"
    else
        [[ -f $1 && -r $1 ]] || mistake "cannot read $1"
    fi
}

# Packs an application folder the way archives are made, in a namespace that sees nothing else of the
# desktop: whoever changes the folder meanwhile leads it nowhere. The archive has the folder's name,
# which is what messages show. Its path is left in `packed`.
pack_folder() {
    local folder=${1%"${1##*[!/]}"} name work line
    [[ -n $asked ]] || folder=$(realpath -- "$folder")
    name=${folder##*/}
    make_scratch
    work=$(mktemp -d -- "$scratch/XXXXXX") || return
    packed=$work/$name
    [[ ! -t 2 ]] || printf '\r\033[KPacking %s' "$(tr -d '[:cntrl:]' <<<"$name")" >&2
    if [[ -n $isolated ]]; then
        line=("$confine" --device "$device" "--${asked}folder" "$folder" "/packing/Payload/$name" --
            "${packing_programs[@]}" --clearenv --setenv PATH /usr/bin:/bin --bind "$work" /packed
            --chdir /packing --new-session -- zip -0qry "/packed/$name" Payload)
    else
        mkdir -- "$work/Payload" || return
        # shellcheck disable=SC2016 # the other shell's
        line=("$confine" --bare --device "$device" "--${asked}folder" "$folder" . --
            bash -c 'cp -a -- "$1" "$2/Payload/" && cd -- "$2" && exec zip -0qry "./$3" Payload'
            - "$folder" "$work" "$name")
    fi
    run_child "${line[@]}"
    local status=$?
    [[ ! -t 2 ]] || printf '\r\033[K' >&2
    return "$status"
}

# install_archives FILE... shows progress by a bar on a terminal; `progress` may ask for lines
# instead. `asked` is "asked-" where a window names the file, see confine; the status is then 66 for
# what is not given to it and 3 for what is no application's archive.
install_archives() {
    require_isolation
    local file number=0 packed name names=() given=() output=${progress:-progress} status
    local -A taken=()
    for file; do
        packed=$file
        if [[ -d $file || (-n $asked && $file =~ \.app/*$) ]]; then
            pack_folder "$file"
            status=$?
            ((status != 66)) || [[ -z $asked ]] || return 66
            ((status == 0)) || fail "cannot pack $file"
        fi
        name=$(basename -- "$packed")
        ((++number))
        [[ -z ${taken[$name]-} ]] || name=$number/$name
        taken[$name]=yes
        # What was packed is the launcher's own.
        if [[ $packed == "$file" ]]; then
            given+=("--${asked}archive" "$packed" "/archives/$name")
        else
            given+=(--archive "$packed" "/archives/$name")
        fi
        [[ -n $isolated ]] || name=$(realpath -- "$packed")
        [[ $name != -* ]] || name=./$name
        names+=("$name")
    done
    local start_folder=/archives
    run_on_device ipainstaller --progress lines ${report:+--report "$report"} -f "${names[@]}"
}

# export_archive IDENTIFIER FILE: the namespace sees neither the file nor its folder, only what is
# open for writing. `placing` may be "new-" where nothing may be replaced, see confine.
export_archive() {
    local given=("--${placing}result" "$2") output=${progress:-progress} read_only=yes
    run_on_device ipainstaller --progress lines ${report:+--report "$report"} --descriptor 10 \
        -b -- "$1" "$(basename -- "$2")"
}
