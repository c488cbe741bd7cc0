# Handing files of the desktop to the device's installer: each archive read-only under its own name,
# an exported archive's folder and nothing else writable.
# shellcheck shell=bash disable=SC2154,SC2034 # variables shared with the launcher and namespace.bash

check_installable() {
    if [[ -d $1 ]]; then
        [[ $(realpath -- "$1") == *.app ]] ||
            mistake "$1 is not an application: the folder's name must end in .app"
    else
        [[ -f $1 && -r $1 ]] || mistake "cannot read $1"
    fi
}

# Packs an application folder the way archives are made; the archive has the folder's name, which is
# what messages show. Its path is left in `packed`.
pack_folder() {
    local folder work
    folder=$(realpath -- "$1")
    make_scratch
    work=$(mktemp -d -- "$scratch/XXXXXX") && mkdir -- "$work/Payload" || return
    packed=$work/${folder##*/}
    [[ ! -t 2 ]] || printf '\r\033[KPacking %s' "$(tr -d '[:cntrl:]' <<<"${folder##*/}")" >&2
    cp -a -- "$folder" "$work/Payload/" &&
        (cd -- "$work" && ZIPOPT=-0 zip -qry "./${folder##*/}" Payload)
    local status=$?
    [[ ! -t 2 ]] || printf '\r\033[K' >&2
    return "$status"
}

# install_archives FILE...; `progress` may name another way than a bar on a terminal.
install_archives() {
    local given number=0 packed name names=() own=("${shared[@]}")
    local -A taken=()
    for given; do
        packed=$given
        [[ ! -d $given ]] || pack_folder "$given" || fail "cannot pack $given"
        name=$(basename -- "$packed")
        ((++number))
        [[ -z ${taken[$name]-} ]] || name=$number/$name
        taken[$name]=yes
        own+=(--ro-bind "$packed" "/archives/$name")
        [[ -n $isolated ]] || name=$(realpath -- "$packed")
        [[ $name != -* ]] || name=./$name
        names+=("$name")
    done
    local start_folder=/archives shared=("${own[@]}")
    run_on_device ipainstaller --progress "${progress:-bar}" -f "${names[@]}"
}

# export_archive IDENTIFIER FOLDER NAME
export_archive() {
    local name=$3 start_folder=/export shared=("${shared[@]}" --bind "$2" /export)
    [[ $name != -* ]] || name=./$name
    cd -- "$2" || exit 1
    run_on_device ipainstaller --progress "${progress:-bar}" -b -- "$1" "$name"
}
