#!/usr/bin/env bash
# From a fresh clone to a message put by one process and got back by another.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

need_packages $mqrig_build_packages
configure_and_build release -DMQRIG_TESTS=OFF -DMQRIG_BENCH=OFF -- mqrig rigqm mqm_r

# The embedded queue manager is meant here, also on a machine that has an IBM MQ installation.
export LD_LIBRARY_PATH="$PWD/build/lib/mqrig"

run() {
  echo "\$ $*"
  "$@"
}

case $(build/bin/rigqm list | grep -F 'QMNAME(QM1) ' || true) in
  '') run build/bin/rigqm create QM1 ;;
  *'STATUS(Ended)'*) run build/bin/rigqm start QM1 ;;
esac
if ! build/bin/rigqm mqsc QM1 -e 'DISPLAY QLOCAL(Q1)' >/dev/null; then
  run build/bin/rigqm mqsc QM1 -e 'DEFINE QLOCAL(Q1)'
fi
run build/bin/mqrig -qm QM1 -q Q1 -m hello
run build/bin/mqrig -qm QM1 -q Q1

cat <<'END'

A message went through queue Q1 of the embedded queue manager QM1. Try next:
  build/bin/mqrig -qm QM1 -q Q1 -m hello -ac -n 3     # put three numbered messages
  build/bin/mqrig -qm QM1 -q Q1 -n 5 -tr              # get them back, every MQI call traced
  build/bin/rigqm mqsc QM1 -e 'DISPLAY QLOCAL(Q1)'    # the queue as MQSC shows it
END
