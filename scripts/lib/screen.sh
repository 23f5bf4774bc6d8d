# shellcheck shell=bash
# A bus and a virtual screen for programs that are to meet nobody's own. Needs lib/packages.sh (die)
# and a session of lib/private.sh.

# until_there WHAT COMMAND...: waits ten seconds for the command to succeed.
until_there() {
  local what=$1 attempt
  shift
  for ((attempt = 0; attempt < 100; attempt++)); do
    if "$@" 2>/dev/null; then return 0; fi
    sleep 0.1
  done
  die "$what has not started within ten seconds; see above for why, then start again"
}

# start_bus FOLDER: a session bus that logs into the folder.
start_bus() {
  local folder=$1
  export DBUS_SESSION_BUS_ADDRESS=unix:path=$XDG_RUNTIME_DIR/bus
  dbus-daemon --session --nofork --nopidfile --address="$DBUS_SESSION_BUS_ADDRESS" \
    &>"$folder/bus.log" &
  until_there "the session bus (see $folder/bus.log)" test -S "$XDG_RUNTIME_DIR/bus"
}

# start_screen FOLDER: a screen with a window manager, which log into the folder.
start_screen() {
  local folder=$1 number=$XDG_RUNTIME_DIR/display
  Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$number" 2>"$folder/Xvfb.log" &
  until_there "Xvfb (see $folder/Xvfb.log)" test -s "$number"
  DISPLAY=:$(<"$number")
  export DISPLAY
  openbox &>"$folder/openbox.log" &
  until_there "openbox (see $folder/openbox.log)" xdotool get_desktop >"$folder/desktop"
  # Windows tell what they show even though nobody has switched a screen reader on.
  export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
}
