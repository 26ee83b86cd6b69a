#!/usr/bin/env bash
# Request and reply between two mqrig processes on the embedded queue manager, beside two processes that only wake each
# other. Usage: bench/request_reply.sh [ROUNDS]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${MQRIG_BUILD:-build}
rounds=${1:-10000}
cmake --build "$build" --target mqrig rigqm mqm_r futex_ping_pong >/dev/null

MQRIG_STORE=$(mktemp -d /var/tmp/mqrig-bench.XXXXXX)
export MQRIG_STORE LD_LIBRARY_PATH="$PWD/$build/lib/mqrig"
trap 'rm -rf "$MQRIG_STORE"' EXIT
"$build/bin/rigqm" create BENCH >/dev/null
"$build/bin/rigqm" mqsc BENCH -e 'DEFINE QLOCAL(REQ)' -e 'DEFINE QLOCAL(REP)' >/dev/null

for run in 1 2 3; do
  echo "futex ping-pong: $("$build/bench/futex_ping_pong" "$rounds")"
  "$build/bin/mqrig" -qm BENCH -q REQ -oq '*' -r MQGMO_WAIT -wi 1000 -ss MQMT_REPLY >/dev/null 2>&1 &
  "$build/bin/mqrig" -qm BENCH -q REQ -iq REP -m ping -n "$rounds" -ss -mc MQGMO_WAIT -wi 10000 |
    awk -v rounds="$rounds" '/^Elapsed time/ {printf "mqrig to mqrig:  %.0f rounds a second, %.1f us each\n", rounds / $4, $4 / rounds * 1e6}'
  wait
done
