# shellcheck shell=bash
# The desktop of script/trial with openbox: an X server, and openbox's own menu of programs.
packages=(openbox)
desktop=(openbox-session)
picture_area=1280x800+0+0

prepare_desktop() { :; }
desktop_is_there() { xprop -root _NET_SUPPORTING_WM_CHECK; }
find_window() {
    local id focus=no
    id=$(xdotool search --onlyvisible --name "$1" | tail -1)
    [ -n "$id" ] || return 0
    [ "$(xdotool getwindowfocus)" != "$id" ] || focus=yes
    xwininfo -id "$id" | awk -v focus=$focus '/Absolute|Width:|Height:/ { printf "%s ", $NF } END { print focus }'
}
menus() { count_menus xwininfo; }
# from_menu KEY...: starts a program from the desktop's menu.
from_menu() {
    local empty
    settled
    empty=$(screen)
    click 1100 60 3
    comes differs_from "$empty" || failed "the desktop shows no menu"
    key a
    key "${@:1:$# - 1}"
    picture menu-of-programs
    key "${@: -1}"
}
start_settings() { from_menu s s Right d; }
start_thunar() { from_menu s Right t; }
