# What each command's own help says, and its arguments.
# shellcheck shell=bash

# help_of COMMAND
help_of() {
    case $1 in
    install)
        echo "Usage: dubrix install FILE.ipa|FOLDER.app..."
        echo "Installs applications on the device, in place of earlier versions."
        ;;
    list)
        echo "Usage: dubrix list"
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
