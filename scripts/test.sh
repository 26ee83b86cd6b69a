#!/usr/bin/env bash
# Builds the release preset and runs every test that is not labelled long. The last line is the counts.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

need_packages $mqrig_test_packages
configure_and_build release -DMQRIG_TESTS=ON -DMQRIG_BENCH=ON -- all
scripts/run_ctest.sh build -LE long
