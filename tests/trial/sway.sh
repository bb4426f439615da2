# shellcheck shell=bash
# The desktop of script/trial with sway, as Debian configures it: Wayland, with Thunar as a Wayland
# program, and sway's launcher. sway's own screen is a window of the X server.
packages=(sway)
# There is no graphics card here.
desktop=(env WLR_BACKENDS=x11 WLR_RENDERER=pixman sway)
picture_area=1280x770+0+30  # without the bar, whose clock changes each second

tell_sway() { swaymsg -s "$(echo "$root"/home/robin/run/sway-ipc.*.sock)" "$@"; }
prepare_desktop() {
    place_screen
    comes tell_sway -t get_version || failed "no sway"
    tell_sway -q exec "sh -c 'echo \$DISPLAY >run/display'"
    comes test -s "$root/home/robin/run/display" || failed "sway starts no program"
}
# sway's screen fills the X server's.
place_screen() {
    xdotool windowmove "$(screen_window)" 0 0 windowsize "$(screen_window)" 1280 800
}
screen_window() { xwininfo -root -children | awk '/^ +0x.* [0-9]+x[0-9][0-9][0-9]+[+]/ { print $1; exit }'; }
desktop_is_there() { [ -n "$(screen_window)" ]; }
find_window() { tell_sway -r -t get_tree | python3 tests/trial/sway_window.py "$1"; }
# Xwayland lets in only the user whose session it is.
menus() {
    count_menus setpriv --reuid="$user" --regid="$user" --clear-groups \
        env DISPLAY="$(cat "$root/home/robin/run/display")" xwininfo
}
# launch COMMAND: by sway's launcher.
launch() {
    key super+d
    comes has_menus 1 || failed "sway shows no launcher"
    xdotool type --delay 80 "$1"
    picture launcher
    xdotool key Return
}
start_settings() { launch 'delvio settings'; }
start_thunar() { launch thunar; }
