#!/usr/bin/env bash
# How long after its second a reminder is on the screen, when nothing but the deliverer runs.
#   bench/alert-latency.sh [ROUNDS]
# Everything runs in a session of its own: bus, Xvfb, openbox, folders. Status 1 when the median
# passes its limit or an alert does not come.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/lib/packages.sh
. scripts/lib/packages.sh
# shellcheck source=scripts/lib/private.sh
. scripts/lib/private.sh

rounds=${1:-11}
limit=150 # ms
bin=$PWD/build/release/bin
place=build/bench

cmake --preset release >/dev/null
cmake --build --preset release --target kestrin KestrinBackground make-sample first-window >&2

trap end_private_session EXIT
trap 'exit 130' HUP INT TERM
private_session "$place"
export DBUS_SESSION_BUS_ADDRESS=unix:path=$XDG_RUNTIME_DIR/bus
mkfifo "$XDG_RUNTIME_DIR/address" "$XDG_RUNTIME_DIR/display" "$XDG_RUNTIME_DIR/seen"
dbus-daemon --session --nofork --nopidfile --address="$DBUS_SESSION_BUS_ADDRESS" --print-address=3 \
  3>"$XDG_RUNTIME_DIR/address" 2>"$place/bus.log" &
read -r _ <"$XDG_RUNTIME_DIR/address"
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$XDG_RUNTIME_DIR/display" \
  2>"$place/Xvfb.log" &
read -r number <"$XDG_RUNTIME_DIR/display"
export DISPLAY=:$number
openbox &>"$place/openbox.log" &

set_file=$PWD/$place/bench.kestrin
mkdir -p "$XDG_CONFIG_HOME/Kestrin"
printf '{"NumberOfSetsToUse": {"type":"LONG","value":[1]},
"SetsToUse": {"type":"BYTE","texts":["%s"]}}\n' "$set_file" >"$XDG_CONFIG_HOME/Kestrin/KestrinSettings.json"

# process_of NAME: the process that owns the name on the bus.
process_of() {
  gdbus call --session -d org.freedesktop.DBus -o /org/freedesktop/DBus \
    -m org.freedesktop.DBus.GetConnectionUnixProcessID "$1" | tr -dc '0-9 ' | awk '{print $2}'
}

latencies=()
# The first round warms the caches and does not count.
for ((round = 0; round <= rounds; round++)); do
  "$bin/first-window" 20 >"$XDG_RUNTIME_DIR/seen" &
  exec 4<"$XDG_RUNTIME_DIR/seen"
  read -r _ <&4
  when=$(($(date +%s) + 3))
  "$bin/make-sample" "$set_file" --now "$((when - 1))" --soon 1
  "$bin/kestrin" -background
  (($(date +%s) < when)) || die "handing over took longer than 3 s: the machine is too busy"
  seen=
  read -r seen <&4 || die "no alert came within 20 s; see $place/bus.log"
  exec 4<&-
  kill -KILL "$(process_of vnd.ZR.Kestrin)"
  ((round > 0)) && latencies+=("$(((seen - when * 1000000) / 1000))")
done

mapfile -t latencies < <(printf '%s\n' "${latencies[@]}" | sort -n)
median=${latencies[$((rounds / 2))]}
echo "alert-latency-best ${latencies[0]} ms"
echo "alert-latency-median $median ms (at most $limit)"
echo "alert-latency-worst ${latencies[-1]} ms"
echo "load $(cut -d' ' -f1 /proc/loadavg)"
((median <= limit)) || die "too much: alert-latency-median"
