# shellcheck shell=bash
# What scripts/try-package does inside its root folder, once as root and, for each login, as a person:
#   package_trial.sh root
#   package_trial.sh login NAME
# The folder /trial has the package, the sample's generator and this script.
set -euo pipefail

step() { printf '== %s\n' "$1"; }

fail() {
  printf 'try-package: %s\n' "$1" >&2
  exit 1
}

# until_there WHAT COMMAND...: waits half a minute for the command to succeed.
until_there() {
  local what=$1 attempt
  shift
  for ((attempt = 0; attempt < 300; attempt++)); do
    if "$@" >/dev/null 2>&1; then return 0; fi
    sleep 0.1
  done
  fail "$what: waited for half a minute"
}

# What is left of Kestrin outside the person's folder, by name and in what others keep about it.
traces() {
  find /etc /opt /srv /usr /var \( -path /var/log -o -path /var/cache -o -path /var/lib/apt \) -prune \
    -o -iname '*kestrin*' -print
  grep -rlsi kestrin /etc /usr/share/applications/mimeinfo.cache /usr/share/mime/{globs2,magic,types} || true
}

# A login session, in the order of a display manager: the screen, the bus, a window manager; then what
# the argument names.
login() {
  export HOME=/home/person XDG_RUNTIME_DIR=/run/user/person QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
  cd
  if [[ ! ${DISPLAY-} ]]; then
    Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$XDG_RUNTIME_DIR/display" 2>/dev/null &
    until_there Xvfb test -s "$XDG_RUNTIME_DIR/display"
    DISPLAY=:$(<"$XDG_RUNTIME_DIR/display")
    export DISPLAY
    dbus-run-session -- bash /trial/package_trial.sh login "$1"
    kill %1
    wait
    rm "$XDG_RUNTIME_DIR/display"
    return
  fi
  openbox &>/dev/null &
  until_there openbox xdotool get_desktop
  "$1"
  pkill -u person -x openbox
}

# Opening by the file type; then the set is remembered, which is its menu's business.
open_set() {
  step "gio open, in a session on $DISPLAY"
  /trial/make-sample "$HOME/Tea.kestrin"
  [[ $(gio info -a standard::content-type Tea.kestrin) == *application/x-vnd.ZR-KestrinEventSet* ]] ||
    fail "the file type is not known"
  gio open Tea.kestrin
  until_there "the window of the set" xdotool search --onlyvisible --name '^Tea.kestrin'
  xdotool search --class '^Kestrin$' >/dev/null || fail "the window's class is not the one of the desktop entry"
  gapplication action vnd.ZR.Kestrin new-event-set
  until_there "the window of a new set" xdotool search --onlyvisible --name '^Untitled'
  kestrin -background
  mkdir -p .config/Kestrin
  pkill -TERM -u person -x kestrin
  until_there "the end of kestrin" bash -c '! pgrep -u person -x kestrin'
  printf '{"NumberOfSetsToUse": {"type": "LONG", "value": [1]}, "SetsToUse": {"type": "BYTE", "texts": ["%s"]}}' \
    "$HOME/Tea.kestrin" >.config/Kestrin/KestrinSettings.json
}

# Nothing is started but what the desktop starts at a login.
be_reminded() {
  step "a fresh login, with the entry at login alone"
  /trial/make-sample "$HOME/Tea.kestrin" --soon 15
  gio launch /etc/xdg/autostart/vnd.ZR.Kestrin.Background.desktop
  until_there "the deliverer alone" \
    bash -c 'pgrep -u person -x KestrinBackgrou && ! pgrep -u person -x kestrin'
  python3 /trial/alert_text.py 60 || fail "no reminder came"
}

as_root() {
  export DEBIAN_FRONTEND=noninteractive
  local before
  before=$(traces)
  id person &>/dev/null || useradd --create-home --home-dir /home/person person
  install -d -o person -m 700 /run/user/person
  step "apt install"
  apt-get -q update
  apt-get -q -y --no-install-recommends install /trial/kestrin_*.deb
  kestrin --version
  kestrinctl --version
  for login in open_set be_reminded; do
    runuser -u person -- bash /trial/package_trial.sh login "$login"
  done
  step "apt purge"
  apt-get -q -y purge kestrin
  [[ $(traces) == "$before" ]] || fail "this is left: $(traces)"
  [[ -f /home/person/Tea.kestrin ]] || fail "the person's set has gone"
}

case $1 in
  root) as_root ;;
  login) login "$2" ;;
esac
