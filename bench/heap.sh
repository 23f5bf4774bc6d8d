#!/usr/bin/env bash
# How long after the engine is done with a thousand events due at once their window is painted.
#   bench/heap.sh [ROUNDS] [EVENTS]
# The engine is done when it has written its last line into the journal. Status 1 when the median
# passes its limit or the window does not come.
set -euo pipefail
# shellcheck source=bench/session.sh
. "$(dirname "${BASH_SOURCE[0]}")/session.sh"

rounds=${1:-5}
events=${2:-1000}
begin_session kestrin KestrinBackground
set_file=$PWD/$place/heap.kestrin
remember "$set_file"

paints=()
for ((round = 0; round <= rounds; round++)); do
  rm -rf "$XDG_STATE_HOME/kestrin"
  watch_for "Kestrin reminders ($events)"
  when=$(($(date +%s) + 3))
  "$tools/make-sample" "$set_file" --now "$((when - 2))" --heap "$events" --soon 2
  "$bin/kestrin" -background
  seen_at
  written=$(stat -c %.6Y "$XDG_STATE_HOME/kestrin/journal")
  done=${written/./}
  kill -KILL "$(process_of vnd.ZR.Kestrin)"
  echo "round $round: $(((done - when * 1000000) / 1000)) ms to deliver, painted $(((seen - done) / 1000)) ms later" >&2
  ((round > 0)) && paints+=("$(((seen - done) / 1000))")
done
tell heap-paint 300 ms "${paints[@]}"
