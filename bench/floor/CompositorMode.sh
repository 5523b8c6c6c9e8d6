#!/bin/sh
# Windows out of sight and the speaker silent, as one would write it by hand.
#   CompositorMode.sh sway|labwc|kwin on|off WINDOWS
# WINDOWS: how many there are, ten programs' "other0" to "other9".
set -eu

mute() {
  pactl set-sink-mute @DEFAULT_SINK@ "$1"
}

# An empty workspace on each monitor, and back to what was there, the one in focus last.
sway() {
  before=${XDG_RUNTIME_DIR:?}/bench.workspaces
  if [ "$1" = on ]; then
    swaymsg -p -t get_workspaces | awk '
      /^Workspace/ { if (/\(focused\)/) focused = $2; else printf "workspace %s; ", $2 }
      END { print "workspace " focused }' >"$before"
    swaymsg -q 'focus output HEADLESS-2; workspace bare2; focus output HEADLESS-1; workspace bare1'
  else
    swaymsg -q "$(cat "$before")"
  fi
}

# Acts on one window a call; who is to be on top comes last.
labwc() {
  for program in 0 1 2 3 4 5 6 7 8 9; do
    [ "$program" -lt "$2" ] || continue
    if [ "$1" = on ]; then
      wlrctl toplevel minimize "app_id:other$program"
    else
      wlrctl toplevel focus "app_id:other$program"
    fi
  done
}

# KWin takes scripts only.
kwin() {
  name=bench$$
  file=${XDG_RUNTIME_DIR:?}/$name.js
  wanted=$([ "$1" = on ] && echo true || echo false)
  cat >"$file" <<JS
const windows = workspace.clientList ? workspace.clientList() : workspace.stackingOrder;
for (const window of windows) if (window.normalWindow) window.minimized = $wanted;
JS
  call() {
    dbus-send --session --print-reply=literal --dest=org.kde.KWin "$@"
  }
  number=$(call /Scripting org.kde.kwin.Scripting.loadScript "string:$file" "string:$name" |
    awk '{ print $2 }')
  call "/Scripting/Script$number" org.kde.kwin.Script.run >"$file.said" 2>&1 ||
    call "/$number" org.kde.kwin.Script.run >"$file.said"
  call /Scripting org.kde.kwin.Scripting.unloadScript "string:$name" >"$file.said"
}

case "$1" in
  sway | labwc | kwin) "$1" "$2" "$3" ;;
  *) exit 1 ;;
esac
if [ "$2" = on ]; then mute 1; else mute 0; fi
