#!/usr/bin/env bash
# What reading mixed events and computing their next times costs.
#   bench/next.sh [RUNS]
# Inside one process, and as a whole process in turn with "remind -n", which finds and prints the next
# occurrences of as many comparable reminders (Debian package "remind"). Status 1 when a figure
# passes its limit.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/lib/packages.sh
. scripts/lib/packages.sh

runs=${1:-7}
copies=8334       # of the sample's twelve events
few_copies=84
max_nanoseconds=150
min_ratio=3       # how many times faster than remind the table of 100,000 events is to be
min_few_ratio=1   # and the whole program, its start and end included, at 1,000
bin=build/release/bin

command -v remind >/dev/null || die "remind is not installed: apt-get install remind"
cmake --preset release >/dev/null
cmake --build --preset release --target kestrinctl make-sample next-bench >&2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TZ=Europe/Berlin

today=$(date +%F)
comparable="REM $(date -d tomorrow +%F) AT 12:00 MSG Welcome
REM 10 Dec +7 AT 9:00 MSG Birthday
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
for size in "many $copies" "few $few_copies"; do
  read -r name count <<<"$size"
  "$bin/make-sample" "$work/$name.kestrin" --copies "$count"
  for ((copy = 0; copy < count; copy++)); do echo "$comparable"; done >"$work/$name.rem"
done

read -r one_by_one reading computing < <("$bin/next-bench" "$work/many.kestrin" "$runs")
echo "read-and-compute $one_by_one ns/event (at most $max_nanoseconds)"
echo "read-into-a-set $reading ns/event"
echo "compute-in-a-set $computing ns/event"

# in_turn LINES COMMAND... [-- LINES COMMAND...]...: the least processor time of each in ms, run one after
# the other, round by round. Each must print that many lines at least.
in_turn() {
  python3 -c '
import resource, subprocess, sys
def cost(lines, command):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    with open(sys.argv[2] + "/out", "wb") as out:
        subprocess.run(command, stdout=out, stderr=subprocess.PIPE)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    with open(sys.argv[2] + "/out", "rb") as out:
        printed = sum(1 for _ in out)
    if printed < lines:
        sys.exit(f"{command[0]} printed only {printed} lines")
    return 1000 * (after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime)
commands, rest = [[]], sys.argv[3:]
for word in rest:
    commands.append([]) if word == "--" else commands[-1].append(word)
costs = [[cost(int(lines), command) for lines, *command in commands] for _ in range(int(sys.argv[1]))]
print(*(f"{min(of):.2f}" for of in zip(*costs)))
' "$@"
}
read -r table json theirs < <(in_turn "$runs" "$work" \
  $((copies * 12)) "$bin/kestrinctl" next "$work/many.kestrin" -- \
  $((copies * 12 * 4)) "$bin/kestrinctl" next --json "$work/many.kestrin" -- \
  $((copies * 10)) remind -n "$work/many.rem")
read -r few few_theirs < <(in_turn $((runs * 6)) "$work" \
  $((few_copies * 12)) "$bin/kestrinctl" next "$work/few.kestrin" -- \
  $((few_copies * 10)) remind -n "$work/few.rem")
ratio=$(awk -v a="$theirs" -v b="$table" 'BEGIN { printf "%.2f", a / b }')
few_ratio=$(awk -v a="$few_theirs" -v b="$few" 'BEGIN { printf "%.2f", a / b }')
echo "kestrinctl-next $table ms (100,000 events)"
echo "kestrinctl-next-json $json ms"
echo "remind-n $theirs ms"
echo "times-faster-than-remind $ratio (at least $min_ratio)"
echo "kestrinctl-next-of-1000 $few ms"
echo "remind-n-of-1000 $few_theirs ms"
echo "times-faster-than-remind-at-1000 $few_ratio (at least $min_few_ratio)"
awk -v total="$one_by_one" -v most="$max_nanoseconds" -v ratio="$ratio" -v least="$min_ratio" \
  -v few="$few_ratio" -v few_least="$min_few_ratio" \
  'BEGIN { exit !(total <= most && ratio >= least && few >= few_least) }' ||
  die "a figure passes its limit"
