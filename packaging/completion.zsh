#compdef dubrix
# Completion of dubrix for zsh. What comes from the device is text here: nothing is run, and zsh
# quotes what goes on the line.

# The identifiers of what is installed, by the names of the device's own records. One that begins
# with - follows --, which makes a name of it.
_dubrix_identifiers() {
    local folder=${device:-${XDG_DATA_HOME:-$HOME/.local/share}/dubrix/device} identifier
    local -a identifiers=($folder/var/containers/Bundle/Registry/*(ND@:t))
    identifiers=("${(@)identifiers:#*[[:cntrl:]]*}")
    if [[ $words[2] == -- ]]; then
        compadd -- "${identifiers[@]}"
        return
    fi
    compadd -- "${(@)identifiers:#-*}"
    for identifier in "${(@M)identifiers:#-*}"; do
        [[ -n $compstate[quote] || $identifier != "${(Q)PREFIX}"* ]] ||
            compadd -QU -- "-- ${(q)identifier}"
    done
}

# The device's folder as it was typed, without quotes; nothing is expanded but a ~ for the home folder.
_dubrix_device() {
    local index
    for ((index = 2; index < CURRENT; ++index)); do
        case $words[index] in
        --device) device=$words[++index] ;;
        --device=*) device=${words[index]#--device=} ;;
        --appearance) ((++index)) ;;
        -*) ;;
        *) break ;;
        esac
    done
    [[ $device != '~/'* ]] || device=${(q)HOME}${device#\~}
    device=${(Q)device}
}

_dubrix_commands() {
    local -a commands=(
        'install:install applications on the device'
        'duplicate:make duplicates of applications or of archives'
        'update:rebuild duplicates that lag behind their source'
        'status:duplicates of each source'
        'settings:what is stored for duplicates'
        'list:identifier, name, version and path of every application'
        'uninstall:remove an application'
        'export:pack an installed application into an archive'
        'home:the home screen of the device'
        'shell:a shell on the device'
        'drive:act out a script'
    )
    _describe command commands || _files -g '*.ipa(-.) *.app(-/)'
}

_dubrix() {
    local state line device
    local -A opt_args
    _dubrix_device
    _arguments -S \
        '--device=[the device'\''s folder]:folder:_files -/' \
        '--samples[install the sample applications on a device made now]' \
        '--appearance[how the application looks]:appearance:(light dark)' \
        '--with-home[open the home screen beside the application]' \
        '--verbose[pass on all that commands say]' \
        '--without-isolation[install applications also where the system permits no isolation]' \
        '(-)'{-h,--help}'[a short help]' \
        '(-)--version[the version]' \
        '1:command:_dubrix_commands' \
        '*::argument:->arguments'
    [[ $state == arguments ]] || return
    # What follows the options: the command first.
    local number=$CURRENT
    ((${words[(i)--]} >= CURRENT)) || ((number--))
    case $words[1] in
    install) _files -g '*.ipa(-.) *.app(-/)' ;;
    duplicate)
        _arguments '--name[its name]:name:' '--color[the color of its icons]:color:' \
            '--plain[neither name nor color]' '--count[so many of each]:number:' \
            '--update[what is done about stale ones]:answer:(yes no ask)' \
            '--output[as archives there]:path:_files' '(-y --yes)'{-y,--yes}'[ask nothing]' \
            '--json[an array of objects]' '--quiet[failures only]' \
            '--verbose[what the commands say]' '*:source:_dubrix_sources'
        ;;
    update)
        _arguments '--all[of all sources]' '(-y --yes)'{-y,--yes}'[ask nothing]' \
            '--json[an array of objects]' '--quiet[failures only]' \
            '--verbose[what the commands say]' '*:source:_dubrix_identifiers'
        ;;
    status) _arguments '--json[an array of objects]' '*:source:_dubrix_identifiers' ;;
    settings)
        _arguments '--json[an object]' '1:key:(application name name-on color color-on)' '2:value:'
        ;;
    list) _arguments '--json[an array of objects]' ;;
    uninstall) ((number != 2)) || _dubrix_identifiers ;;
    export)
        if ((number == 2)); then
            _dubrix_identifiers
        elif ((number == 3)); then
            _files -g '*.ipa(-.)'
        fi
        ;;
    home)
        if [[ $words[2] == drive && CURRENT -gt 2 ]]; then
            shift words
            ((CURRENT--))
            _dubrix_drive
        else
            _arguments '--size[the window'\''s size]:WIDTHxHEIGHT:' \
                '--shot[only a picture of it]:file:_files -g "*.png(-.)"' '1:script:(drive)'
        fi
        ;;
    drive) _dubrix_drive ;;
    esac
}

_dubrix_sources() {
    _dubrix_identifiers
    _files -g '*.ipa(-.)'
}

_dubrix_drive() {
    _arguments '--show[on the display]' '--size[the window'\''s size]:WIDTHxHEIGHT:' \
        '1:script:_files -g "*.drive(-.)"'
}

_dubrix "$@"
