# Completion of dubrix for bash. What comes from the device or from the disk is text here and stays
# it: nothing is expanded, nothing is run, and what goes on the line is quoted.
# shellcheck shell=bash

# _dubrix_read TEXT: takes the next piece of the line apart as the shell will, without expanding
# anything: into `words`, of which the last is not at its end; `quote` is n, s or d outside of quotes
# and within single and double ones. `unclear` has an entry for words that only the shell can read.
_dubrix_read() {
    local rest=$1 char
    while [[ -n $rest ]]; do
        char=${rest:0:1} rest=${rest:1}
        case $quote$char in
        n\' | s\') [[ $quote == n ]] && quote=s || quote=n ;;
        n\" | d\") [[ $quote == n ]] && quote=d || quote=n ;;
        n\\ | d\\)
            [[ $quote == n || ${rest:0:1} == [\"\\\$\`] ]] || words[-1]+=\\
            words[-1]+=${rest:0:1} rest=${rest:1}
            ;;
        n[[:space:]])
            [[ -z $started ]] || words+=('')
            started=
            continue
            ;;
        [nd][\$\`] | n[\;\&\|\<\>\(\)])
            unclear[${#words[@]} - 1]=yes
            words[-1]+=$char
            ;;
        n\~)
            [[ -z $started && $rest == /* ]] && char=$HOME
            words[-1]+=$char
            ;;
        *) words[-1]+=$char ;;
        esac
        started=yes
    done
}

# _dubrix_offer [OPTION] TEXT...: what begins like the word that was typed, quoted for where it goes;
# with --files it is left to bash to quote. Nothing that would not arrive as it is, whatever the
# terminal makes of it.
_dubrix_offer() {
    local text quoted files=
    [[ ${1-} != --files ]] || { files=yes && shift; }
    [[ -z ${unclear[${#words[@]} - 1]-} ]] || return
    for text; do
        [[ $text == "${words[-1]}"* && $text != *[[:cntrl:]]* ]] || continue
        printf -v quoted %q "$text"
        [[ $quoted != "\$'"* ]] || continue
        text=${text:${#fixed}}
        case $files$context in
        n) printf -v text %q "$text" ;;
        s)
            text=${text//\'/\'\\\'\'}
            # Bash takes a quote at the end for the closing one and adds none.
            [[ $text != *\' ]] || text+=\'
            ;;
        d)
            # Within double quotes nothing keeps it from being looked up in the history.
            [[ $text != *!* ]] || continue
            text=${text//\\/\\\\}
            text=${text//\"/\\\"}
            text=${text//\$/\\\$}
            text=${text//\`/\\\`}
            [[ $text != *\" ]] || text+=\"
            ;;
        esac
        COMPREPLY+=("$text")
    done
}

# _dubrix_files GLOB [PREFIX]: folders, and files whose names match, after a prefix of the word.
_dubrix_files() {
    local typed=${words[-1]#"${2-}"} path found=() fitting=()
    mapfile -d '' -t found < <(
        set +f
        shopt -u failglob
        shopt -s nullglob
        printf '%s\0' "$typed"*
    )
    for path in "${found[@]}"; do
        # shellcheck disable=SC2053 # a pattern
        [[ -d $path || (-n $path && $path == $1) ]] || continue
        [[ $path != [-~]* ]] || path=./$path
        fitting+=("${2-}$path")
    done
    compopt -o filenames 2>/dev/null
    _dubrix_offer --files "${fitting[@]}"
}

# The identifiers of what is installed, by the names of the device's own records.
_dubrix_identifiers() {
    local registry identifier identifiers=()
    [[ $device != unclear ]] || return
    registry=${device:-${XDG_DATA_HOME:-$HOME/.local/share}/dubrix/device}
    [[ $registry == /* ]] || registry=./$registry
    registry+=/var/containers/Bundle/Registry
    [[ -d $registry ]] || return
    mapfile -d '' -t identifiers < <(
        command find "$registry/" -maxdepth 1 -type l -printf '%f\0' 2>/dev/null
    )
    for identifier in "${identifiers[@]}"; do
        if [[ $identifier != -* || -n $names_only ]]; then
            _dubrix_offer "$identifier"
        elif [[ $quote$fixed == n && $identifier == "${words[-1]}"* ]]; then
            # Two words, the first of which makes a name of the second.
            printf -v identifier %q "$identifier"
            [[ $identifier == *[[:cntrl:]]* || $identifier == "\$'"* ]] ||
                COMPREPLY+=("-- $identifier")
        fi
    done
}

# _dubrix_command: leaves the command in `command` and in `number` how many words it and what follows
# it are, without the current one; in `device` the device's folder, "unclear" when only the shell can
# tell; in `names_only` whether no further word can be an option.
_dubrix_command() {
    local index value
    for ((index = 1; index < ${#words[@]} - 1; ++index)); do
        case ${words[index]} in
        --device | --device=*)
            [[ ${words[index]} != --device ]] || ((++index))
            value=${words[index]#--device=}
            ((index == ${#words[@]} - 1)) || device=${unclear[index]:+unclear}
            device=${device:-$value}
            ;;
        --appearance) ((++index)) ;;
        -*) ;;
        *)
            command=${words[index]}
            # What follows "home drive" is what follows "drive".
            if ((index < ${#words[@]} - 2)) && [[ "$command ${words[index + 1]}" == 'home drive' ]]; then
                command=drive
                ((++index))
            fi
            break
            ;;
        esac
    done
    for (( ; index < ${#words[@]} - 1; ++index)); do
        if [[ ${words[index]} == -- && -z $names_only ]]; then
            names_only=yes
        else
            ((++number))
        fi
    done
}

_dubrix_drive() {
    if [[ ${words[-1]} == -* ]]; then
        _dubrix_offer --show --size --help
    else
        _dubrix_files '*.drive'
    fi
}

_dubrix_argument() {
    case $command/$number in
    install/*) _dubrix_files '*.ipa' ;;
    uninstall/1 | export/1) _dubrix_identifiers ;;
    export/2) _dubrix_files '*.ipa' ;;
    home/1) _dubrix_offer drive ;;
    drive/*) _dubrix_drive ;;
    duplicate/*)
        _dubrix_identifiers
        _dubrix_files '*.ipa'
        ;;
    update/* | status/*) _dubrix_identifiers ;;
    settings/1) _dubrix_offer application name name-on color color-on ;;
    esac
    case $command/${words[-1]} in
    home/-*) _dubrix_offer --size --shot --help ;;
    duplicate/-*)
        [[ -n $names_only ]] || _dubrix_offer --name --color --plain --count --update --output \
            --yes --json --quiet --verbose --help
        ;;
    update/-*) [[ -n $names_only ]] || _dubrix_offer --all --yes --json --quiet --verbose --help ;;
    status/-* | settings/-* | list/-*) [[ -n $names_only ]] || _dubrix_offer --json --help ;;
    install/-* | uninstall/-* | export/-* | shell/-*)
        [[ -n $names_only ]] || _dubrix_offer --help
        ;;
    esac
}

_dubrix() {
    local words=('') unclear=() quote=n started='' fixed context command='' device='' names_only=''
    local line=${COMP_LINE:0:COMP_POINT} number=0
    COMPREPLY=()
    # Bash puts what is offered in place of $2, which may be but the last part of the word.
    [[ $line == *"$2" ]] || return
    _dubrix_read "${line:0:${#line} - ${#2}}"
    fixed=${words[-1]} context=$quote
    _dubrix_read "$2"
    ((${#words[@]} > 1)) || return
    _dubrix_command
    case $command/${words[-2]} in
    /--device) _dubrix_files '' ;;
    /--appearance) _dubrix_offer light dark ;;
    /*)
        case ${words[-1]} in
        --device=*) _dubrix_files '' --device= ;;
        -*) _dubrix_offer --device --samples --appearance --with-home --verbose --without-isolation --help --version ;;
        *)
            _dubrix_offer install duplicate update status settings list uninstall export home shell drive
            ((${#COMPREPLY[@]} > 0)) || _dubrix_files '*.ipa'
            ;;
        esac
        ;;
    drive/--size | home/--size) ;;
    home/--shot) _dubrix_files '*.png' ;;
    duplicate/--update) _dubrix_offer yes no ask ;;
    duplicate/--output) _dubrix_files '' ;;
    duplicate/--name | duplicate/--color | duplicate/--count) ;;
    *) _dubrix_argument ;;
    esac
}

complete -F _dubrix dubrix
