# Completion of delvio's arguments for bash.

_delvio_settings() {
    "${COMP_WORDS[0]}" settings list 2>/dev/null | sed -n 's/^\([A-Za-z_]*\) = .*/\1/p'
}

# The settings that are lists, found by the English words.
_delvio_lists() {
    LANGUAGE=en "${COMP_WORDS[0]}" settings list 2>/dev/null |
        sed -n '/^[A-Za-z_]* = /{s/ = .*//;h}; /^    takes absolute paths/{g;p}'
}

# The options of "delvio $1 $2".
_delvio_options() {
    case "$1 $2" in
        " ") echo --help --version ;;
        "menu "*)
            echo --help --at --depth --json --modifiers --no-resident --open --pick --png \
                --print --replace --setting ;;
        "settings list") echo --help --json ;;
        "settings reset") echo --help --all ;;
        "install "*) echo --help --list ;;
        *) echo --help ;;
    esac
}

# The words other than options that may follow "delvio $1 $2"; nothing where files follow.
_delvio_words() {
    case "$1 $2" in
        " ") echo menu settings install uninstall undo ;;
        "settings ") echo list get set add remove reset ;;
        "settings get" | "settings set" | "settings reset") _delvio_settings ;;
        "settings add" | "settings remove") _delvio_lists ;;
        "install " | "uninstall ")
            echo caja dolphin gworkspace nautilus nemo pcmanfm pcmanfm-qt thunar ;;
    esac
}

# The values of the option $1; fails when it takes a file, or when it takes no value.
_delvio_values() {
    case $1 in
        --modifiers) echo shift option command control ;;
        --setting) _delvio_settings | sed 's/$/=/' ;;
        --at | --depth | --open | --pick) ;;
        *) return 1 ;;
    esac
}

_delvio() {
    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    local command= verb= words i
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
            -*) ;;
            *) if [ -z "$command" ]; then command=${COMP_WORDS[i]}; else verb=${verb:-${COMP_WORDS[i]}}; fi ;;
        esac
    done
    if words=$(_delvio_values "$before"); then
        compopt +o default
        if [ "$before" = --setting ]; then compopt -o nospace; fi
    elif [[ $current == -* ]]; then
        words=$(_delvio_options "$command" "$verb")
    else
        words=$(_delvio_words "$command" "$verb")
        if [ "$command" != menu ]; then compopt +o default; fi
        case "$command $verb" in
            "settings set" | "settings add" | "settings remove")
                if [ "$before" != "$verb" ]; then compopt -o default; words=; fi ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -o default -F _delvio delvio
