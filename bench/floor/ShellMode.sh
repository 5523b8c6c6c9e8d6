#!/bin/sh
# What the mode does on Xfce with dunst and PulseAudio, as one would write it by hand.
#   ShellMode.sh on [PICTURE] | off | toggle | microphone
set -eu

state=${XDG_RUNTIME_DIR:?}/shell-mode
icons=/desktop-icons/style

desktop() {
  xfconf-query -c xfce4-desktop "$@"
}

backdrops() {
  desktop -l | grep '/monitor.*/workspace0/last-image$'
}

windows() {
  wmctrl -lx | awk '$2 != -1 && tolower($3) !~ /calmdeck/ { print $1 }'
}

on() {
  mkdir -p "$state"
  desktop -p "$icons" -n -t int -s 0
  : >"$state/backdrops"
  [ -z "$1" ] || for backdrop in $(backdrops); do
    printf '%s %s\n' "$backdrop" "$(desktop -p "$backdrop")" >>"$state/backdrops"
    desktop -p "$backdrop" -s "$1"
  done
  dunstctl set-paused true
  windows >"$state/windows"
  while read -r window; do
    xdotool windowminimize "$window"
  done <"$state/windows"
  pactl set-sink-mute @DEFAULT_SINK@ 1
  touch "$state/is-on"
}

off() {
  desktop -p "$icons" -s 2
  while read -r backdrop picture; do
    desktop -p "$backdrop" -s "$picture"
  done <"$state/backdrops"
  dunstctl set-paused false
  while read -r window; do
    xdotool windowmap "$window"
  done <"$state/windows"
  pactl set-sink-mute @DEFAULT_SINK@ 0
  rm -f "$state/is-on"
}

toggle() {
  if [ -e "$state/is-on" ]; then off; else on ""; fi
}

microphone() {
  pactl set-source-mute @DEFAULT_SOURCE@ toggle
  case $(pactl get-source-mute @DEFAULT_SOURCE@) in
    *yes) notify-send -a shell-mode "Mic muted" ;;
    *) notify-send -a shell-mode "Mic unmuted" ;;
  esac
}

case "${1:-}" in
  on) on "${2:-}" ;;
  off) off ;;
  toggle) toggle ;;
  microphone) microphone ;;
  *) echo "usage: ShellMode.sh on [PICTURE] | off | toggle | microphone" >&2; exit 1 ;;
esac
