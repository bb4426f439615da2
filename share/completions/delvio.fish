# Completion of delvio's arguments for fish.

function __delvio_settings
    delvio settings list 2>/dev/null | string match -rg '^([A-Za-z_]+) = '
end

# The settings that are lists.
function __delvio_lists
    env LANGUAGE=en delvio settings list 2>/dev/null |
        sed -n '/^[A-Za-z_]* = /{s/ = .*//;h}; /^    takes absolute paths/{g;p}'
end

# Whether the words so far, without options, are "delvio" and these.
function __delvio_after
    set -l words (commandline -opc)[2..]
    set -l plain (string match -v -- '-*' $words)
    test "$plain[1..$(count $argv)]" = "$argv" -a (count $plain) -ge (count $argv)
end

function __delvio_right_after
    set -l plain (string match -v -- '-*' (commandline -opc)[2..])
    test "$plain" = "$argv"
end

complete -c delvio -n '__delvio_right_after' -f
complete -c delvio -n '__delvio_right_after' -l version -d 'Print the version'
complete -c delvio -l help -s h -d 'Print the help'

complete -c delvio -n '__delvio_right_after' -a menu -d 'Show the menu of files'
complete -c delvio -n '__delvio_right_after' -a settings -d 'Show and change the settings'
complete -c delvio -n '__delvio_right_after' -a install -d 'Put Delvio into a file manager'
complete -c delvio -n '__delvio_right_after' -a uninstall -d 'Take Delvio out of a file manager'
complete -c delvio -n '__delvio_right_after' -a undo -d 'Undo the last move, copy or alias'

complete -c delvio -n '__delvio_after menu' -l at -x -d 'Show the menu at X,Y'
complete -c delvio -n '__delvio_after menu' -l depth -x -d 'Levels of submenus to open'
complete -c delvio -n '__delvio_after menu' -l json -d 'Write the menu as JSON'
complete -c delvio -n '__delvio_after menu' -l modifiers -x -a 'shift option command control' -d 'Keys to hold down'
complete -c delvio -n '__delvio_after menu' -l no-resident -d 'Show the menu from this process'
complete -c delvio -n '__delvio_after menu' -l open -x -d 'Hold this submenu open'
complete -c delvio -n '__delvio_after menu' -l pick -x -d 'Pick this item'
complete -c delvio -n '__delvio_after menu' -l png -r -d 'Save a picture of the menu'
complete -c delvio -n '__delvio_after menu' -l print -d 'Write the menu as text'
complete -c delvio -n '__delvio_after menu' -l replace -d 'Replace files of the same names'
complete -c delvio -n '__delvio_after menu' -l setting -x -a '(__delvio_settings)=' -d 'Override a setting'

complete -c delvio -n '__delvio_right_after settings' -f -a list -d 'List all settings'
complete -c delvio -n '__delvio_right_after settings' -f -a get -d 'Print a value'
complete -c delvio -n '__delvio_right_after settings' -f -a set -d 'Change a setting'
complete -c delvio -n '__delvio_right_after settings' -f -a add -d 'Add to a list'
complete -c delvio -n '__delvio_right_after settings' -f -a remove -d 'Remove from a list'
complete -c delvio -n '__delvio_right_after settings' -f -a reset -d 'Back to the default'
complete -c delvio -n '__delvio_after settings list' -f -l json -d 'Write the list as JSON'
complete -c delvio -n '__delvio_after settings reset' -f -l all -d 'All settings'
complete -c delvio -n '__delvio_after settings reset' -f -a '(__delvio_settings)'
complete -c delvio -n '__delvio_right_after settings get' -f -a '(__delvio_settings)'
complete -c delvio -n '__delvio_right_after settings set' -f -a '(__delvio_settings)'
complete -c delvio -n '__delvio_right_after settings add' -f -a '(__delvio_lists)'
complete -c delvio -n '__delvio_right_after settings remove' -f -a '(__delvio_lists)'

set -l managers caja dolphin gworkspace nautilus nemo pcmanfm pcmanfm-qt thunar
complete -c delvio -n '__delvio_right_after install' -f -a "$managers"
complete -c delvio -n '__delvio_after install' -f -l list -d 'Show the file managers'
complete -c delvio -n '__delvio_right_after uninstall' -f -a "$managers"
