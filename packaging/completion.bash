# Completion of dubrix for bash.
# shellcheck shell=bash

# _dubrix_command: leaves the command that was typed in `command`, empty when there is none yet, and
# in `device` the options that choose the device.
_dubrix_command() {
    local index
    command='' device=()
    for ((index = 1; index < COMP_CWORD; ++index)); do
        case ${COMP_WORDS[index]} in
        --device)
            device=(--device "${COMP_WORDS[index + 1]}")
            ((++index))
            [[ ${COMP_WORDS[index]} != = ]] || device[1]=${COMP_WORDS[++index]}
            ;;
        --appearance) ((++index)) ;;
        -*) ;;
        *)
            command=${COMP_WORDS[index]}
            return
            ;;
        esac
    done
}

# The identifiers of what is installed. A device that does not exist yet is not made for that.
_dubrix_identifiers() {
    local folder=${device[1]:-${XDG_DATA_HOME:-$HOME/.local/share}/dubrix/device}
    folder=${folder/#\~\//$HOME/}
    [[ ! -d $folder/var ]] || "${COMP_WORDS[0]}" --device "$folder" list 2>/dev/null | cut -f 1
}

# _dubrix_files GLOB: folders, and files whose names match.
_dubrix_files() {
    local path
    compopt -o filenames 2>/dev/null
    while IFS= read -r path; do
        # shellcheck disable=SC2053 # a pattern
        if [[ -d $path || $path == $1 ]]; then
            COMPREPLY+=("$path")
        fi
    done < <(compgen -f -- "$word")
}

_dubrix_words() {
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$word")
}

_dubrix_drive() {
    if [[ $word == -* ]]; then
        _dubrix_words '--show --size'
    else
        _dubrix_files '*.drive'
    fi
}

_dubrix() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command device
    COMPREPLY=()
    [[ $word != = ]] || word=
    [[ $previous != = ]] || previous=${COMP_WORDS[COMP_CWORD - 2]}
    _dubrix_command
    case $command/$previous in
    /--device) _dubrix_files '' ;;
    /--appearance) _dubrix_words 'light dark' ;;
    /*)
        if [[ $word == -* ]]; then
            _dubrix_words '--device --samples --appearance --with-home --help --version'
        else
            _dubrix_words 'install list uninstall export home shell drive'
        fi
        ;;
    install/*) _dubrix_files '*.ipa' ;;
    uninstall/uninstall | export/export) _dubrix_words "$(_dubrix_identifiers)" ;;
    export/*) _dubrix_files '*.ipa' ;;
    drive/--size | home/--size) ;;
    home/--shot) _dubrix_files '*.png' ;;
    home/home) _dubrix_words 'drive --size --shot' ;;
    home/*)
        if [[ ${COMP_WORDS[*]} == *' home drive '* ]]; then
            _dubrix_drive
        else
            _dubrix_words '--size --shot'
        fi
        ;;
    drive/*) _dubrix_drive ;;
    esac
}

complete -F _dubrix dubrix
