# What each command's own help says, and its arguments.
# shellcheck shell=bash

# help_of COMMAND
help_of() {
    case $1 in
    install)
        echo "Usage: dubrix install FILE.ipa|FOLDER.app..."
        echo "Installs applications on the device, in place of earlier versions."
        ;;
    duplicate)
        echo "Usage: dubrix duplicate [SOURCE...] [OPTION...]"
        echo "Makes duplicates of installed applications, named by identifier or exact name, or of"
        echo "archives FILE.ipa; without a source of the application chosen in the settings. Writes"
        echo "number, identifier, name, version and archive of each, separated by tabs."
        echo "  --name TEXT    its name; {n} stands for the number"
        echo "  --color COLOR  the color of its icons: #rrggbb, r,g,b or a name of CSS"
        echo "  --plain        neither, whatever the settings say"
        echo "  --count N      so many of each source, 1 to 100"
        echo "  --update yes|no|ask"
        echo "                 whether stale duplicates on the way are rebuilt as well"
        echo "  --output PATH  each as an archive in that folder, or, a single one, as that file;"
        echo "                 all that is left of what is made of an archive; never in place of"
        echo "                 a file that is there"
        echo "  -y, --yes      ask nothing; stale duplicates stay unless --update says else"
        echo "  --json         an array of objects instead of lines"
        echo "  --quiet        nothing but failures; --verbose: also what the commands say"
        ;;
    update)
        echo "Usage: dubrix update [SOURCE...] [--all] [-y|--yes] [--json] [--quiet|--verbose]"
        echo "Rebuilds every stale duplicate of the sources, or of all with --all, the lowest number"
        echo "first. Writes number, identifier, name, earlier and new version of each."
        ;;
    status)
        echo "Usage: dubrix status [SOURCE...] [--json]"
        echo "Writes identifier, name, version, duplicates and stale ones of each source that has"
        echo "duplicates, or is named, and below it number, name, version and state of each."
        ;;
    settings)
        echo "Usage: dubrix settings [--json]"
        echo "       dubrix settings KEY VALUE"
        echo "Writes what is stored for duplicates, or stores one value: application, name, name-on,"
        echo "color or color-on."
        ;;
    list)
        echo "Usage: dubrix list [--json]"
        echo "Writes identifier, name, version and path of every application on the device, a line"
        echo "each, separated by tabs."
        ;;
    uninstall)
        echo "Usage: dubrix uninstall [--] IDENTIFIER"
        echo "Removes an application from the device. -- goes before an identifier that begins with -."
        ;;
    export)
        echo "Usage: dubrix export [--] IDENTIFIER FILE.ipa"
        echo "Packs an installed application into an archive. -- goes before an identifier or a file"
        echo "that begins with -."
        ;;
    home)
        echo "Usage: dubrix home [--size WIDTHxHEIGHT] [--shot FILE.png]"
        echo "       dubrix home drive [SCRIPT] [--show] [--size WIDTHxHEIGHT]"
        echo "Opens the device's home screen; with --shot it only saves a picture of it, without a"
        echo "display. With drive it acts out a script on the home screen: see dubrix drive --help."
        ;;
    shell)
        echo "Usage: dubrix shell [ARGUMENT...]"
        echo "Starts a shell on the device. Arguments go to bash; --help alone is this text."
        ;;
    drive)
        echo "Usage: dubrix drive [SCRIPT] [--show] [--size WIDTHxHEIGHT]"
        echo "Acts out a script (standard input without one) on the application, without a display"
        echo "unless --show is given. The manual page names the steps."
        ;;
    esac
    echo "Options that choose the device go before the command: see dubrix --help."
}

# asks_for_help COMMAND ARGUMENT...
asks_for_help() {
    local command=$1 argument
    shift
    [[ $command != shell || $# == 1 ]] || return
    for argument; do
        case $argument in
        --) return 1 ;;
        -h | --help) return 0 ;;
        esac
    done
    return 1
}

# take_arguments COMMAND ARGUMENT...: leaves those of a command without options in `arguments`.
take_arguments() {
    local command=$1
    shift
    arguments=()
    while (($#)); do
        case $1 in
        --)
            arguments+=("${@:2}")
            return
            ;;
        -?*) mistake "unknown option of $command: $1" ;;
        *) arguments+=("$1") ;;
        esac
        shift
    done
}
