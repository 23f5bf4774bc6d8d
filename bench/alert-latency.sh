#!/usr/bin/env bash
# How long after its second a reminder is on the screen, when nothing but the deliverer runs.
#   bench/alert-latency.sh [--full] [ROUNDS]
# --full: with 1,000 alerts put off and 5 MB of history on disk. KESTRIN_BIN: another build's programs.
# Everything runs in a session of its own: bus, Xvfb, openbox, folders. Status 1 when the median
# passes its limit or an alert does not come.
set -euo pipefail
# shellcheck source=bench/session.sh
. "$(dirname "${BASH_SOURCE[0]}")/session.sh"

full=
[[ ${1-} != --full ]] || {
  full=-full
  shift
}
rounds=${1:-11}
begin_session kestrin KestrinBackground

set_file=$PWD/$place/bench.kestrin
if [[ $full ]]; then
  "$tools/make-sample" "$PWD/$place/many.kestrin" --heap 1000 --soon 31536000
  python3 bench/full-state.py "$tools/kestrinctl" "$PWD/$place/many.kestrin" "$place/full"
  remember "$set_file" "$PWD/$place/many.kestrin"
else
  mkdir "$place/full"
  remember "$set_file"
fi

latencies=()
# The first round warms the caches and does not count.
for ((round = 0; round <= rounds; round++)); do
  rm -rf "$XDG_STATE_HOME/kestrin"
  cp -r "$place/full" "$XDG_STATE_HOME/kestrin"
  watch_for ''
  when=$(($(date +%s) + 3))
  "$tools/make-sample" "$set_file" --now "$((when - 1))" --soon 1
  "$bin/kestrin" -background
  (($(date +%s) < when)) || die "handing over took longer than 3 s: the machine is too busy"
  seen_at
  kill -KILL "$(process_of vnd.ZR.Kestrin)"
  ((round > 0)) && latencies+=("$(((seen - when * 1000000) / 1000))")
done
tell "alert-latency$full" 150 ms "${latencies[@]}"
