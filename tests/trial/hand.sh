# shellcheck shell=bash
# The eyes and the hand of script/trial: the screen, keys, clicks. The desktop's own file says
# `picture_area`, `find_window` and `menus`.

screen() { import -silent -window root -crop "$picture_area" rgba:- | md5sum; }
differs_from() { [ "$(screen)" != "$1" ]; }
# Waits until nothing moves any more.
settled() {
    local before after=
    until before=$after; after=$(screen); [ "$before" = "$after" ]; do sleep 0.7; done
}
count=0
picture() {
    settled
    count=$((count + 1))
    last_picture=$(printf '%s/%02d-%s.png' "$pictures" $count "$1")
    import -silent -window root "$last_picture"
}
# comes WORD...: waits until the command succeeds, for two minutes at most.
comes() {
    local end=$((SECONDS + 120))
    until "$@" >/dev/null 2>&1; do
        [ $SECONDS -lt $end ] || return 1
        sleep 0.3
    done
}
# place NAME: sets left, top, wide, high and focus of the window with such a name.
place() {
    local found
    found=$(find_window "$1")
    [ -n "$found" ] && read -r left top wide high focus <<<"$found"
}
has_window() { place "$1"; }
has_none() { ! has_window "$1"; }
has_focus() { has_window "$1" && [ "$focus" = yes ]; }
# Whether this many menus of X programs are shown.
has_menus() { [ "$(menus)" -eq "$1" ]; }
count_menus() {
    local shown=0 id
    for id in $("$@" -root -children | awk '/^ +0x/ { print $1 }'); do
        "$@" -id "$id" | awk '/Override Redirect State: yes/ { n++ } /Map State: IsViewable/ { n++ }
            /Width:/ && $2 > 40 { n++ } END { exit n < 3 }' && shown=$((shown + 1))
    done
    echo $shown
}
key() { settled; xdotool key --delay 150 "$@"; }
click() { settled; xdotool mousemove "$1" "$2"; settled; xdotool click "$3"; }
# Types the beginning of a row's name in Delvio's menu.
choose() {
    settled
    xdotool type --delay 80 "$1"
    settled
}
# enter NAME COUNT: opens the folder of this name in Delvio's menu, which has then so many levels.
enter() {
    choose "$1"
    xdotool key Right
    comes has_menus "$2" || failed "no submenu for $1"
}
# point_at KEY: sets x and y to the middle of what the key selects in Thunar's folder.
point_at() {
    local width height across down before
    place 'Inbox.*Thunar'
    click $((left + wide - 30)) $((top + high - 60)) 1
    settled
    import -silent -window root "$scratch/before.png"
    before=$(screen)
    xdotool key "$1"
    comes differs_from "$before" || failed "Thunar selects nothing"
    settled
    import -silent -window root "$scratch/after.png"
    read -r width height across down < <(convert "$scratch/before.png" "$scratch/after.png" -compose difference \
        -composite -crop "$((wide - 200))x$((high - 160))+$((left + 180))+$((top + 110))" \
        -trim -format '%w %h %X %Y\n' info: | tr -d +)
    x=$((across + width / 2)) y=$((down + height / 3))
}
# Right-clicks what the key selects, and picks Delvio in Thunar's menu, where it is the last but one.
open_delvio() {
    local before
    point_at "$1"
    settled
    before=$(screen)
    click "$x" "$y" 3
    comes differs_from "$before" || failed "Thunar shows no menu"
    key Up Up
    picture "thunars-menu-$2"
    before=$(screen)
    xdotool key Return
    comes differs_from "$before" || failed "Thunar's menu stays"
    comes has_menus 1 || failed "Delvio's menu does not come"
    picture "delvios-menu-$2"
}
