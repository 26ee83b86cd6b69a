#!/usr/bin/env bash
# A queue manager of its own under load. Usage: soak.sh FOLDER-OF-RIGQM SOAK-PROGRAM name=value...
# MQRIG_SOAK_FOLDER: where the queue manager is made (default: a temporary folder).
set -euo pipefail
bin=$1 soak=$2
shift 2
folder=$(mktemp -d "${MQRIG_SOAK_FOLDER:-${TMPDIR:-/tmp}}/mqrig-soak-XXXXXX")
trap 'rm -rf "$folder"' EXIT
export MQRIG_STORE=$folder/store
"$bin/rigqm" create LOAD >/dev/null
{
  echo 'ALTER QMGR MAXMSGL(104857600) MAXHANDS(100000)'
  for queue in DEEP 1 2 3 4 5 6 7 8; do
    echo "DEFINE QLOCAL(LOAD.$queue) MAXDEPTH(999999999) MAXMSGL(104857600)"
  done
} | "$bin/rigqm" mqsc LOAD >"$folder/defined" || { cat "$folder/defined" >&2; exit 1; }
"$soak" LOAD LOAD "$MQRIG_STORE/LOAD" "$@"
"$bin/rigqm" check LOAD
"$bin/rigqm" end LOAD
"$bin/rigqm" check LOAD
