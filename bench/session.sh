# A session of a measurement's own: bus, Xvfb, openbox, folders. Sourced by the scripts beside this file.
# shellcheck shell=bash disable=SC2034 # what stands here is for those scripts
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit
# shellcheck source=scripts/lib/packages.sh
. scripts/lib/packages.sh
# shellcheck source=scripts/lib/private.sh
. scripts/lib/private.sh
# shellcheck source=scripts/lib/screen.sh
. scripts/lib/screen.sh

tools=$PWD/build/release/bin
# Another revision's programs can be measured with this one's tools.
bin=${KESTRIN_BIN:-$tools}
place=build/bench

# begin_session TARGET...: builds what is needed, then starts the session.
begin_session() {
  cmake --preset release >/dev/null
  cmake --build --preset release --target "$@" kestrinctl make-sample first-window >&2
  trap end_private_session EXIT
  trap 'exit 130' HUP INT TERM
  private_session "$place"
  start_bus "$place"
  start_screen "$place"
  unset QT_LINUX_ACCESSIBILITY_ALWAYS_ON # nobody listens
  mkfifo "$XDG_RUNTIME_DIR/seen"
  mkdir -p "$XDG_CONFIG_HOME/Kestrin"
}

# remember SET...: these sets are remembered for delivery.
remember() {
  local texts
  texts=$(printf ',"%s"' "$@")
  printf '{"NumberOfSetsToUse": {"type":"LONG","value":[%d]},\n"SetsToUse": {"type":"BYTE","texts":[%s]}}\n' \
    $# "${texts:1}" >"$XDG_CONFIG_HOME/Kestrin/KestrinSettings.json"
}

# watch_for TITLE: from here on the first window is waited for, as first-window does.
watch_for() {
  "$tools/first-window" 20 "$1" >"$XDG_RUNTIME_DIR/seen" &
  exec 4<"$XDG_RUNTIME_DIR/seen"
  read -r _ <&4
}

# seen_at: sets `seen` to the moment of that window, in microseconds since 1970.
seen_at() {
  seen=
  read -r seen <&4 || die "no window came within 20 s; see $place/bus.log"
  exec 4<&-
}

# process_of NAME: the process that owns the name on the bus.
process_of() {
  gdbus call --session -d org.freedesktop.DBus -o /org/freedesktop/DBus \
    -m org.freedesktop.DBus.GetConnectionUnixProcessID "$1" | tr -dc '0-9 ' | awk '{print $2}'
}

# tell NAME LIMIT UNIT VALUE...: best, median and worst; fails when the median passes the limit.
tell() {
  local name=$1 limit=$2 unit=$3 sorted median
  shift 3
  mapfile -t sorted < <(printf '%s\n' "$@" | sort -n)
  median=${sorted[$(($# / 2))]}
  echo "$name-best ${sorted[0]} $unit"
  echo "$name-median $median $unit (at most $limit)"
  echo "$name-worst ${sorted[-1]} $unit"
  echo "load $(cut -d' ' -f1 /proc/loadavg)"
  ((median <= limit)) || die "too much: $name-median"
}
