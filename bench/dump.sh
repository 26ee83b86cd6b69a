#!/usr/bin/env bash
# The hexadecimal dump of one large body (`mqrig -br`) beside `xxd` and `hexdump -C` on the same bytes, in MB of body a
# second of processor time: whole processes, the best of three, for random bytes and for text, in the locales C and
# C.UTF-8. The MQI library does nothing but read the body. Usage: bench/dump.sh [MEGABYTES]   (default 64)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${MQRIG_BUILD:-build}
megabytes=${1:-64}
cmake --build "$build" --target mqrig null_mqi >/dev/null

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
size=$((megabytes * 1024 * 1024))
head -c "$size" /dev/urandom >"$folder/random"
yes 'A line of text with some words in it; Grüße, señor, 日本語.' | head -c "$size" >"$folder/text" || true

# The best of three runs, in MB a second.
rate() {
  local TIMEFORMAT='%U %S'
  for run in 1 2 3; do
    { time "$@" >/dev/null 2>&1; } 2>&1
  done | awk -v mb="$megabytes" '{ r = mb / ($1 + $2); if (r > best) best = r } END { print best }'
}

dump() {
  NULL_MQI_BODY=$1 LD_LIBRARY_PATH="$PWD/$build/bench/null_mqi" \
    "$build/bin/mqrig" -qm Q -q Q -br -n 1 -sz $((size + 1))
}

printf '%-8s %-8s %8s %8s %10s %8s %8s\n' locale body mqrig xxd 'hexdump -C' x_xxd x_hexdump
for locale in C C.UTF-8; do
  export LC_ALL=$locale
  for body in random text; do
    ours=$(rate dump "$folder/$body")
    xxd=$(rate xxd "$folder/$body")
    hexdump=$(rate hexdump -C "$folder/$body")
    awk -v l="$locale" -v b="$body" -v o="$ours" -v x="$xxd" -v h="$hexdump" \
      'BEGIN { printf "%-8s %-8s %8.0f %8.0f %10.0f %7.1fx %8.1fx\n", l, b, o, x, h, o / x, o / h }'
  done
done
