#!/usr/bin/env bash
# What the window of a set of 100,000 events costs: opening, sorting, changes.
#   bench/list.sh [RUNS]
# Processor time beside the toolkit's own sorted list with as many rows. Status 1 when a figure
# passes its limit.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/lib/packages.sh
. scripts/lib/packages.sh

runs=${1:-5}
copies=8334 # of the sample's twelve events
# Microseconds.
declare -A limits=([open-and-paint]=300000 [sort-by-three-keys]=200000 [one-change]=1000
  [delete-all]=300000 [undo-delete-all]=300000)

cmake --preset release >/dev/null
cmake --build --preset release --target make-sample list-bench >&2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
build/release/bin/make-sample "$work/many.kestrin" --copies "$copies"

slow=()
while read -r name ours peer; do
  line="$name $ours us"
  [[ ${limits[$name]-} ]] && line+=" (at most ${limits[$name]})"
  [[ $peer == - ]] || line+=", the toolkit's list $peer us: $(awk -v a="$peer" -v b="$ours" 'BEGIN { printf "%.2f", a / b }') times ours"
  echo "$line"
  ((ours <= ${limits[$name]-ours})) || slow+=("$name")
done < <(env -u DISPLAY QT_QPA_PLATFORM=offscreen XDG_CONFIG_HOME="$work" \
  XDG_RUNTIME_DIR="$work" QT_LOGGING_RULES="*.warning=false" \
  build/release/bin/list-bench "$work/many.kestrin" "$runs")
echo "load $(cut -d' ' -f1 /proc/loadavg)"
((${#slow[@]} == 0)) || die "over the limit: ${slow[*]}"
