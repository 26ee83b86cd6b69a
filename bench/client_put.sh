#!/usr/bin/env bash
# What mqrig adds to a put: whole-process time of COUNT puts on an MQI library that does nothing, against a minimal
# program that makes the same calls and writes the same bytes. Five pairs in turn; prints each and the median ratio.
# Usage: bench/client_put.sh [COUNT]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${MQRIG_BUILD:-build}
count=${1:-200000}
cmake --build "$build" --target mqrig minimal_put null_mqi >/dev/null

export LD_LIBRARY_PATH="$PWD/$build/bench/null_mqi"
seconds() {
  local start end
  start=$(date +%s%N)
  "$@" >/dev/null
  end=$(date +%s%N)
  echo "$start $end" | awk '{printf "%.4f", ($2 - $1) / 1e9}'
}

ratios=()
for pair in 1 2 3 4 5; do
  client=$(seconds "$build/bin/mqrig" -qm Q -q Q -m hello -n "$count")
  minimal=$(seconds "$build/bench/minimal_put" "$count")
  ratio=$(awk -v a="$client" -v b="$minimal" 'BEGIN {printf "%.3f", a / b}')
  echo "pair $pair: mqrig $client s, minimal $minimal s, ratio $ratio"
  ratios+=("$ratio")
done
printf '%s\n' "${ratios[@]}" | sort -n | sed -n 3p | sed 's/^/median ratio: /'
