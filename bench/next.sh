#!/usr/bin/env bash
# What reading 100,000 mixed events and computing their next times costs.
#   bench/next.sh [RUNS]
# Inside one process, and as a whole process beside "remind -n", which finds and prints the next
# occurrences of as many comparable reminders (Debian package "remind"). Status 1 when a figure
# passes its limit.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/lib/packages.sh
. scripts/lib/packages.sh

runs=${1:-7}
copies=8334       # of the sample's twelve events
max_nanoseconds=400
min_ratio=1       # how many times faster than remind
bin=build/release/bin

command -v remind >/dev/null || die "remind is not installed: apt-get install remind"
cmake --preset release >/dev/null
cmake --build --preset release --target kestrinctl make-sample next-bench >&2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TZ=Europe/Berlin

"$bin/make-sample" "$work/many.kestrin" --copies "$copies"
today=$(date +%F)
comparable="REM $(date -d tomorrow +%F) AT 12:00 MSG Welcome
REM 10 Dec +7 *2 AT 9:00 MSG Birthday
REM Mon 1 May MSG Passport
REM 1 --1 AT 18:00 MSG Rent
REM Sat 8 AT 10:00 MSG Water filter
REM Thu AT 19:30 MSG Choir
REM $today *14 AT 20:00 MSG Paper bin
REM AT 22:00 MSG Backup
REM Mon Tue Wed Thu Fri AT 16:45 MSG Time sheet
REM Sat Sun AT 8:00 MSG Garden
REM $today *5 MSG Orchids
REM AT 9:00 +480 *120 MSG Window"
for ((copy = 0; copy < copies; copy++)); do echo "$comparable"; done >"$work/many.rem"

read -r reading computing total < <("$bin/next-bench" "$work/many.kestrin" "$runs")
echo "read $reading ns/event"
echo "compute $computing ns/event"
echo "read-and-compute $total ns/event (at most $max_nanoseconds)"

# best_of COMMAND...: the least processor time of the runs, in ms.
best_of() {
  local TIMEFORMAT='%U %S' run
  for ((run = 0; run < runs; run++)); do
    { time "$@" >"$work/out"; } 2>&1 | tail -n 1
  done | awk '{ ms = ($1 + $2) * 1000; if (NR == 1 || ms < best) best = ms } END { printf "%d", best }'
}
table=$(best_of "$bin/kestrinctl" next "$work/many.kestrin")
lines=$(wc -l <"$work/out")
((lines > copies * 12)) || die "kestrinctl printed only $lines lines"
ours=$(best_of "$bin/kestrinctl" next --json "$work/many.kestrin")
names=$(grep -o '"Name"' "$work/out" | wc -l)
((names == copies * 12)) || die "kestrinctl printed only $names events"
theirs=$(best_of remind -n "$work/many.rem")
lines=$(wc -l <"$work/out")
((lines > copies * 10)) || die "remind printed only $lines lines"
ratio=$(awk -v a="$theirs" -v b="$ours" 'BEGIN { printf "%.2f", a / b }')
echo "kestrinctl-next $table ms (a table, aligned for people)"
echo "kestrinctl-next-json $ours ms"
echo "remind-n $theirs ms"
echo "times-faster-than-remind $ratio (at least $min_ratio)"
awk -v total="$total" -v most="$max_nanoseconds" -v ratio="$ratio" -v least="$min_ratio" \
  'BEGIN { exit !(total <= most && ratio >= least) }' || die "a figure passes its limit"
