#!/usr/bin/env bash
# run_ctest.sh BUILD_FOLDER [CTEST_OPTION...]: runs the tests of one build folder and closes with the counts.
set -uo pipefail
build=$1
shift
log=$(mktemp)
trap 'rm -f "$log"' EXIT
ctest --test-dir "$build" --output-on-failure --no-tests=error -j "$(nproc)" "$@" >"$log" 2>&1
status=$?
# A failing test's output is shown; the passing ones are a count.
if [ $status -ne 0 ]; then
  grep -vE '^ *[0-9]+/[0-9]+ Test +#.* Passed |^ *Start +[0-9]+: ' "$log"
else
  tail -n 4 "$log"
fi
failed=$(sed -n 's/^.*tests passed, \([0-9]*\) tests failed out of.*$/\1/p' "$log")
total=$(sed -n 's/^.*tests failed out of \([0-9]*\).*$/\1/p' "$log")
echo "$((${total:-0} - ${failed:-0})) passed, ${failed:-0} failed"
exit $status
