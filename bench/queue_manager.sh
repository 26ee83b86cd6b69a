#!/usr/bin/env bash
# Rates of the embedded queue manager beside those of the disk and the storage libraries in the same folder.
# Usage: bench/queue_manager.sh [FOLDER]   (the disk to measure; default /var/tmp)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${MQRIG_BUILD:-build}
cmake --build "$build" --target rigqm queue_manager_rates storage_floor >/dev/null

MQRIG_STORE=$(mktemp -d "${1:-/var/tmp}/mqrig-bench.XXXXXX")
export MQRIG_STORE LD_LIBRARY_PATH="$PWD/$build/lib/mqrig"
trap 'rm -rf "$MQRIG_STORE"' EXIT

echo "storage underneath:"
"$build/bench/storage_floor" "$MQRIG_STORE"
echo "embedded queue manager:"
"$build/bin/rigqm" create BENCH >/dev/null
"$build/bin/rigqm" mqsc BENCH -e 'DEFINE QLOCAL(Q) MAXDEPTH(1000000)' >/dev/null
"$build/bench/queue_manager_rates" BENCH Q
