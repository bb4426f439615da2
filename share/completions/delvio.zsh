#compdef delvio
# Completion of delvio's arguments for zsh.

_delvio_settings() {
    local -a settings
    settings=(${(f)"$(_call_program settings delvio settings list | sed -n 's/^\([A-Za-z_]*\) = .*/\1/p')"})
    compadd "$@" -a settings
}

_delvio_lists() {
    local -a lists
    lists=(${(f)"$(_call_program settings env LANGUAGE=en delvio settings list | sed -n '/^[A-Za-z_]* = /{s/ = .*//;h}; /^    takes absolute paths/{g;p}')"})
    compadd "$@" -a lists
}

_delvio_menu() {
    _arguments \
        '(- *)--help[print the help]' \
        '--at[show the menu there]:X,Y:' \
        '--depth[levels of submenus to open]:number:' \
        '(--png --pick --print)--json[write the menu as JSON]' \
        '--modifiers[keys to hold down]:key:_sequence compadd - shift option command control' \
        '--no-resident[show the menu from this process]' \
        '*--open[hold this submenu open]:title:' \
        '(--json --png --print)*--pick[pick this item]:title:' \
        '(--json --pick --print)--png[save a picture of the menu]:file:_files' \
        '(--json --pick --png)--print[write the menu as text]' \
        '--replace[replace files of the same names]' \
        '*--setting[override a setting]:setting:_delvio_settings -S =' \
        '*:file:_files'
}

_delvio_settings_command() {
    local -a verbs
    verbs=(
        'list:list all settings'
        'get:print a value'
        'set:change a setting'
        'add:add to a list'
        'remove:remove from a list'
        'reset:back to the default'
    )
    if (( CURRENT == 2 )); then
        _describe 'command' verbs
        return
    fi
    case $words[2] in
        list) _arguments '(- *)--help[print the help]' '--json[write the list as JSON]' ;;
        get) _arguments '(- *)--help[print the help]' '2:setting:_delvio_settings' ;;
        set) _arguments '(- *)--help[print the help]' '2:setting:_delvio_settings' '*:value:_files' ;;
        add | remove) _arguments '(- *)--help[print the help]' '2:list:_delvio_lists' '*:value:_files' ;;
        reset) _arguments '(- *)--help[print the help]' '--all[all settings]' '*:setting:_delvio_settings' ;;
    esac
}

_delvio_managers() {
    compadd caja dolphin gworkspace nautilus nemo pcmanfm pcmanfm-qt thunar
}

_delvio() {
    local -a commands
    commands=(
        'menu:show the menu of files'
        'settings:show and change the settings'
        'install:put Delvio into a file manager'
        'uninstall:take Delvio out of a file manager'
        'undo:undo the last move, copy or alias'
    )
    local curcontext=$curcontext state line
    _arguments -C '(- *)--help[print the help]' '(- *)--version[print the version]' \
        '1:command:->command' '*::argument:->argument'
    case $state in
        command) _describe 'command' commands ;;
        argument)
            case $line[1] in
                menu) _delvio_menu ;;
                settings) _delvio_settings_command ;;
                install) _arguments '(- *)--help[print the help]' '(- *)--list[show the file managers]' '1:file manager:_delvio_managers' ;;
                uninstall) _arguments '(- *)--help[print the help]' '1:file manager:_delvio_managers' ;;
                undo) _arguments '(- *)--help[print the help]' ;;
            esac ;;
    esac
}

_delvio "$@"
