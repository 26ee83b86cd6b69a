#!/usr/bin/env bash
# Writes docs/conformance.md anew, and the list of reasons that it shows: scripts/conformance.sh [BUILD_FOLDER]
# The tests of the MQI are run for the list; they must pass.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
folder=tests/qmgr/conformance
# Every program with mqrig_record_reasons in its CMakeLists.txt.
mapfile -t programs < <(sed -n 's/^mqrig_record_reasons(\(.*\))$/\1/p' tests/qmgr/*/CMakeLists.txt)
cmake --build "$build" --target conformance_page "${programs[@]}"

written=$(mktemp -d)
trap 'rm -rf "$written"' EXIT
export MQRIG_REASONS_SEEN=$written/seen
for program in "${programs[@]}"; do
  # Suite by suite: the stores of one process stay mapped until it ends.
  for suite in $("$build/tests/bin/$program" --gtest_list_tests | sed -n 's/^\([^ #]*\.\).*/\1/p'); do
    [ "$suite" != Reasons. ] || continue # it holds the programs to the list that is to be written
    "$build/tests/bin/$program" --gtest_brief=1 --gtest_filter="$suite*" >"$written/output" || {
      cat "$written/output"
      exit 1
    }
  done
done
"$build/tests/bin/conformance_page" "$written/seen" >"$written/reasons.txt"
cp "$written/reasons.txt" $folder/
"$build/tests/bin/conformance_page" >"$written/conformance.md"
cp "$written/conformance.md" docs/
git --no-pager diff --stat -- $folder/reasons.txt docs/conformance.md
