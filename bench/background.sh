#!/bin/sh
# What the background deliverer costs while it waits, and how late it wakes the application.
#   bench/background.sh [BINARY] [IDLE_SECONDS] [WAKE_UPS]
# BINARY: a release build (default build/release/bin/KestrinBackground, built when missing). Runs on a
# bus of its own. Prints one value a line; status 1 when a value passes its limit.
set -eu

here=$(cd "$(dirname "$0")/.." && pwd)
binary=${1:-$here/build/release/bin/KestrinBackground}
idle=${2:-120}
rounds=${3:-20}
max_rss=3200      # kB
max_lateness=5000 # microseconds

if [ ! -x "$binary" ]; then
  (cd "$here" && cmake --preset release >/dev/null && ninja -C build/release KestrinBackground) >&2
fi

work=$(mktemp -d)
pids=
finish() {
  for pid in $pids; do kill "$pid" 2>/dev/null || true; done
  rm -rf "$work"
}
trap finish EXIT INT TERM

export XDG_RUNTIME_DIR="$work"
mkdir "$work/services"
cat > "$work/bus.conf" <<END
<busconfig>
  <type>session</type>
  <listen>unix:path=$work/bus</listen>
  <servicedir>$work/services</servicedir>
  <policy context="default"><allow send_destination="*"/><allow eavesdrop="true"/><allow own="*"/></policy>
</busconfig>
END
mkfifo "$work/address" "$work/names"
dbus-daemon --config-file="$work/bus.conf" --nofork --print-address=3 3>"$work/address" 2>"$work/log" &
pids="$pids $!"
read -r DBUS_SESSION_BUS_ADDRESS < "$work/address"
export DBUS_SESSION_BUS_ADDRESS

# Tells the times at which calls pass the bus: what a receiver sees, plus the monitor's own delay.
dbus-monitor --profile "type='method_call',destination='vnd.ZR.Kestrin'" > "$work/calls" &
pids="$pids $!"
gdbus monitor --session --dest vnd.ZR.KestrinBackground > "$work/names" &
pids="$pids $!"
exec 4< "$work/names"
read -r _ <&4
read -r _ <&4

# Alone: it would start an application that lies beside it, which has another next event to tell.
cp "$binary" "$work/KestrinBackground"
"$work/KestrinBackground" 2>"$work/errors" &
deliverer=$!
pids="$pids $deliverer"
read -r _ <&4 # its name has an owner now

post() {
  gdbus call --session -d vnd.ZR.KestrinBackground -o /vnd/ZR/KestrinBackground \
    -m vnd.ZR.Kestrin.Messages.Post "$1" "$2" >/dev/null
}
status() { sed -n "s/^$1:[[:space:]]*\([0-9]*\).*/\1/p" "/proc/$deliverer/status"; }
exact_rss() { sed -n 's/^Rss:[[:space:]]*\([0-9]*\).*/\1/p' "/proc/$deliverer/smaps_rollup"; }
failed=0
value() { # name value unit [limit]
  echo "$1 $2 $3${4:+ (at most $4)}"
  if [ -n "${4:-}" ] && [ "$2" -gt "$4" ]; then
    failed=1
    echo "too much: $1" >&2
  fi
}

post 0x53657445 "{'When': <int32 $(($(date +%s) + 86400))>}"
sleep 1
value rss-waiting "$(status VmRSS)" kB $max_rss
value rss-waiting-exact "$(exact_rss)" kB

before=$(status voluntary_ctxt_switches)
sleep "$idle"
value "idle-context-switches-in-${idle}s" "$(($(status voluntary_ctxt_switches) - before))" times 0

round=0
: > "$work/wanted"
while [ $round -lt "$rounds" ]; do
  when=$(($(date +%s) + 2))
  echo $when >> "$work/wanted"
  post 0x53657445 "{'When': <int32 $when>}"
  sleep 2.5 # nobody answers on this bus: the next round replaces the tries that follow
  round=$((round + 1))
done
# The first call of each round stands in the second it was wanted for; "mc" lines begin with a time.
awk 'NR == FNR { wanted[$1] = 1; next }
     $1 == "mc" { split($2, t, "."); if (t[1] in wanted && !(t[1] in seen)) { seen[t[1]] = 1; print t[2] + 0 } }' \
  "$work/wanted" "$work/calls" | sort -n > "$work/late"
value wake-ups-seen "$(wc -l < "$work/late")" "of $rounds"
[ "$(wc -l < "$work/late")" -eq "$rounds" ] || failed=1
value lateness-median "$(sed -n "$(((rounds + 1) / 2))p" "$work/late")" us
value lateness-worst "$(tail -n 1 "$work/late")" us $max_lateness

post 0x53657445 "{'When': <int32 $(($(date +%s) + 86400))>}"
sleep 1
value rss-after-wake-ups "$(status VmRSS)" kB $max_rss
value rss-after-wake-ups-exact "$(exact_rss)" kB

# The nearest peer: remind, waiting in the foreground for one timed reminder of the same day, looks
# at its file once a minute. What it does at the moment itself is another job and is not compared.
if command -v remind >/dev/null; then
  echo "REM AT 23:59 +0 MSG something" > "$work/peer.rem"
  remind -f -z1 "$work/peer.rem" > "$work/peer" 2>&1 &
  peer=$!
  pids="$pids $peer"
  sleep 1
  if ! kill -0 "$peer" 2>/dev/null; then
    echo "remind ended at once:" >&2
    cat "$work/peer" >&2
    exit 1
  fi
  deliverer=$peer
  value remind-rss-waiting "$(status VmRSS)" kB
  before=$(status voluntary_ctxt_switches)
  sleep "$idle"
  value "remind-context-switches-in-${idle}s" "$(($(status voluntary_ctxt_switches) - before))" times
else
  echo "remind is not installed: not compared"
fi
exit $failed
