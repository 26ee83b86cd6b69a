#!/usr/bin/env bash
# Runs a program on a queue manager of its own: run.sh RIGQM FOLDER_OF_THE_LIBRARY PROGRAM [ARGUMENT]... [, PROGRAM ...]
# Several programs, separated by a comma, run at once; all of them must succeed.
set -eu
rigqm=$1
library=$2
shift 2
store=$(mktemp -d "${TMPDIR:-/tmp}/mqrig-program.XXXXXX")
trap 'rm -rf "$store"' EXIT
export MQRIG_STORE=$store RIGQM=$rigqm LD_LIBRARY_PATH=$library
"$rigqm" create QM1 >/dev/null
"$rigqm" mqsc QM1 >"$store/mqsc.out" <<'MQSC' || { cat "$store/mqsc.out" >&2; exit 1; }
DEFINE QLOCAL(Q1)
DEFINE QLOCAL(Q2)
DEFINE QLOCAL(TWO) MAXDEPTH(2)
DEFINE QLOCAL(FULL) MAXDEPTH(0)
DEFINE QLOCAL(REQUESTS)
DEFINE QLOCAL(WORK) BOTHRESH(3) BOQNAME(WORK.BACKOUT)
DEFINE QLOCAL(WORK.BACKOUT)
DEFINE QLOCAL(PCF.1)
DEFINE QLOCAL(PCF.2)
DEFINE QLOCAL(DEAD)
ALTER QMGR DEADQ(DEAD)
MQSC
pids=()
command=()
start() {
  "${command[@]}" &
  pids+=($!)
  command=()
}
for word; do
  if [ "$word" = , ]; then start; else command+=("$word"); fi
done
start
for pid in "${pids[@]}"; do wait "$pid"; done
