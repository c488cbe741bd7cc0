#compdef dubrix
# Completion of dubrix for zsh.

# The identifiers of what is installed. A device that does not exist yet is not made for that.
_dubrix_identifiers() {
    local folder=${(Q)opt_args[--device]:-${XDG_DATA_HOME:-$HOME/.local/share}/dubrix/device}
    local -a identifiers
    [[ ! -d $folder/var ]] ||
        identifiers=(${(f)"$(dubrix --device $folder list 2>/dev/null | cut -f 1)"})
    _describe identifier identifiers
}

_dubrix_commands() {
    local -a commands=(
        'install:install applications on the device'
        'list:identifier, name, version and path of every application'
        'uninstall:remove an application'
        'export:pack an installed application into an archive'
        'home:the home screen of the device'
        'shell:a shell on the device'
        'drive:act out a script'
    )
    _describe command commands
}

_dubrix() {
    local state line
    local -A opt_args
    _arguments -S \
        '--device[the device'\''s folder]:folder:_files -/' \
        '--samples[install the sample applications on a device made now]' \
        '--appearance[how the application looks]:appearance:(light dark)' \
        '--with-home[open the home screen beside the application]' \
        '(-)'{-h,--help}'[a short help]' \
        '(-)--version[the version]' \
        '1:command:_dubrix_commands' \
        '*::argument:->arguments'
    [[ $state == arguments ]] || return
    # What follows the options: the command first.
    case $words[1] in
    install) _files -g '*.ipa(-.) *.app(-/)' ;;
    uninstall) ((CURRENT != 2)) || _dubrix_identifiers ;;
    export)
        if ((CURRENT == 2)); then
            _dubrix_identifiers
        elif ((CURRENT == 3)); then
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

_dubrix_drive() {
    _arguments '--show[on the display]' '--size[the window'\''s size]:WIDTHxHEIGHT:' \
        '1:script:_files -g "*.drive(-.)"'
}

_dubrix "$@"
