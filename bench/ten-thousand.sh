#!/usr/bin/env bash
# How long 10,000 events take that all come due at one second, when nothing but the deliverer runs.
#   bench/ten-thousand.sh [ROUNDS [FOLDER_OF_PROGRAMS...]]
# With several folders, of other revisions, each is measured in turn within a round, and the first is held
# against the last. Status 1 when it takes more than 1.2 times as long, or something does not come.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/lib/packages.sh
. scripts/lib/packages.sh
# shellcheck source=scripts/lib/private.sh
. scripts/lib/private.sh
# shellcheck source=scripts/lib/screen.sh
. scripts/lib/screen.sh

rounds=${1:-5}
own=$PWD/build/release/bin
folders=("${@:2}")
((${#folders[@]})) || folders=("$own")
events=10000
most=1.2
patience=300 # seconds; the revisions before the list of reminders open a box for every alert
place=build/bench

cmake --preset release >/dev/null
cmake --build --preset release --target kestrin KestrinBackground make-sample first-window >&2

trap end_private_session EXIT
trap 'exit 130' HUP INT TERM
private_session "$place"
start_bus "$place"
start_screen "$place"
mkfifo "$XDG_RUNTIME_DIR/seen"
set_file=$PWD/$place/bench.kestrin
mkdir -p "$XDG_CONFIG_HOME/Kestrin"

process_of() {
  gdbus call --session -d org.freedesktop.DBus -o /org/freedesktop/DBus \
    -m org.freedesktop.DBus.GetConnectionUnixProcessID "$1" 2>/dev/null | tr -dc '0-9 ' | awk '{print $2}'
}
end_all() {
  local name process
  for name in vnd.ZR.Kestrin vnd.ZR.KestrinBackground; do
    process=$(process_of "$name") || continue
    [[ ! $process ]] || kill -KILL "$process"
  done
}
# ticks PROCESS: the processor time that it has used, in ms.
ticks() { awk -v hertz="$(getconf CLK_TCK)" '{ print int(($14 + $15) * 1000 / hertz) }' "/proc/$1/stat"; }

# measure FOLDER: milliseconds from the second to the first window, to the application's next time at the
# deliverer, to the set's file; and what processor time it had used by that next time.
measure() {
  local when seen='' kestrin told saved used look monitor
  rm -rf "$XDG_STATE_HOME/kestrin" "$XDG_DATA_HOME/dbus-1" "$XDG_RUNTIME_DIR/kestrin"
  printf '{"NumberOfSetsToUse": {"type":"LONG","value":[1]},
"SetsToUse": {"type":"BYTE","texts":["%s"]}}\n' "$set_file" >"$XDG_CONFIG_HOME/Kestrin/KestrinSettings.json"
  "$own/first-window" "$patience" >"$XDG_RUNTIME_DIR/seen" &
  exec 4<"$XDG_RUNTIME_DIR/seen"
  read -r _ <&4
  when=$(($(date +%s) + 5))
  "$own/make-sample" "$set_file" --now "$((when - 1))" --soon 1 --heap "$events"
  timeout "$patience" dbus-monitor --profile "member='Post',path='/vnd/ZR/KestrinBackground'" \
    >"$place/posts" 2>/dev/null &
  monitor=$!
  "$1/kestrin" -background
  (($(date +%s) < when)) || die "handing over took longer than 5 s: the machine is too busy"
  read -r seen <&4 || die "no window came within $patience s; see $place/bus.log"
  exec 4<&-
  kestrin=$(process_of vnd.ZR.Kestrin)
  until told=$(awk -v when="$when" '$2 > when && /Post$/ { print $2; exit }' "$place/posts") && [[ $told ]]; do
    (($(date +%s) < when + patience)) || die "no next time was told within $patience s; see $place/posts"
    sleep 0.05
  done
  used=$(ticks "$kestrin")
  # Earlier revisions save no set while an alert of it stands open: then it says 0.
  for ((look = 0; look < 200; look++)); do
    saved=$(stat -c %.6Y "$set_file")
    awk -v saved="$saved" -v when="$when" 'BEGIN { exit !(saved > when) }' && break
    saved=$when
    sleep 0.05
  done
  awk -v when="$when" -v seen="$seen" -v told="$told" -v saved="$saved" -v used="$used" \
    'BEGIN { printf "%d %d %d %d\n", seen / 1000 - when * 1000, (told - when) * 1000, (saved - when) * 1000, used }'
  kill "$monitor"
  end_all
}

# The first round warms the caches and does not count.
for ((round = 0; round <= rounds; round++)); do
  for which in "${!folders[@]}"; do
    figures=$(measure "${folders[which]}")
    echo "${folders[which]}: $figures" >&2
    ((round == 0)) || echo "$which $figures" >>"$place/figures"
  done
done
medians() { # WHICH COLUMN
  awk -v which="$1" -v column="$2" '$1 == which { print $column }' "$place/figures" | sort -n |
    awk '{ at[NR] = $1 } END { print at[int((NR + 1) / 2)] }'
}
names=(first-window engine-done saved processor-time)
status=0
for column in "${!names[@]}"; do
  ours=$(medians 0 $((column + 2)))
  echo "ten-thousand-${names[column]} $ours ms"
  ((${#folders[@]} > 1)) || continue
  theirs=$(medians $((${#folders[@]} - 1)) $((column + 2)))
  echo "ten-thousand-${names[column]}-of-the-last $theirs ms"
  if ((column < 2)) && awk -v a="$ours" -v b="$theirs" -v m="$most" 'BEGIN { exit !(a > b * m) }'; then
    echo "ten-thousand.sh: too much: ${names[column]}" >&2
    status=1
  fi
done
echo "load $(cut -d' ' -f1 /proc/loadavg)"
exit "$status"
