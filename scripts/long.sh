#!/usr/bin/env bash
# What takes longer than an everyday run: many kills, load, the whole suite under valgrind's eye, cppcheck, coverage.
# Usage: scripts/long.sh [kills] [faults] [soak] [valgrind] [fuzz] [cppcheck] [coverage]   (all without an argument)
# --soak is the same as soak. MQRIG_SOAK_SECONDS: of mixed work (default 3600), MQRIG_SOAK_DEEP: messages on one queue
# (default 1000000).
# MQRIG_KILL_ROUNDS: rounds of three kills each, at random moments and again at every named step (default 700).
# MQRIG_FORWARDING_KILLS: kills of a run from queue to queue (default 200). MQRIG_FUZZ_SECONDS: the CPU time of each
# fuzz target (default 600).
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

steps=("$@")
[ ${#steps[@]} -gt 0 ] || steps=(kills faults soak valgrind fuzz cppcheck coverage)
step() { echo "== $1 ($(date -u +%H:%M:%S))"; }

need_packages $mqrig_long_packages

kills() {
  step "processes killed at random moments and at every named step"
  configure_and_build release -DMQRIG_TESTS=ON -- qmgr_store_tests moving_end_to_end crash_run
  build/tests/bin/crash_run --kills $((3 * ${MQRIG_KILL_ROUNDS:-700})) --seed "$(date +%s)"
  MQRIG_KILL_ROUNDS=${MQRIG_KILL_ROUNDS:-700} build/tests/bin/qmgr_store_tests --gtest_filter='Kills.*' | tail -n 3
  MQRIG_FORWARDING_KILLS=${MQRIG_FORWARDING_KILLS:-200} build/tests/bin/moving_end_to_end --gtest_filter='Forwarding.*' |
    tail -n 3
}

# Every allocation, open, read, write, sync, map and lock of many runs fails in turn, once and for good; under the address
# sanitizer too, which looks for what is not given back (of the queue manager a sample there).
faults() {
  step "calls that fail: all places"
  configure_and_build release -DMQRIG_TESTS=ON -- client_fault_sweep qmgr_fault_tests
  MQRIG_FAULT_PLACES=0 build/tests/bin/qmgr_fault_tests --gtest_filter='*FaultSweep*' | grep -v '^\[ RUN'
  build/tests/bin/client_fault_sweep --client build/bin/mqrig --library build/tests/scripted_mqi \
    --faults build/tests/faults tests/client/faults/runs.test
  configure_and_build asan -DMQRIG_BENCH=OFF -- client_fault_sweep qmgr_fault_tests
  MQRIG_FAULT_PLACES=30 build-asan/tests/bin/qmgr_fault_tests --gtest_filter='*FaultSweep*' | grep -v '^\[ RUN'
  build-asan/tests/bin/client_fault_sweep --client build-asan/bin/mqrig --library build-asan/tests/scripted_mqi \
    --faults build-asan/tests/faults tests/client/faults/runs.test
}

soak_run() {
  step "load: ${MQRIG_SOAK_SECONDS:-3600} s of mixed work"
  configure_and_build release -DMQRIG_TESTS=ON -- rigqm mqm_r soak
  nice tests/load/soak.sh build/bin build/tests/bin/soak seconds="${MQRIG_SOAK_SECONDS:-3600}" \
    deep="${MQRIG_SOAK_DEEP:-1000000}"
}

valgrind_run() {
  step "valgrind over a put, a get, a browse, MQSC, a check and a backup"
  configure_and_build debug -DMQRIG_BENCH=OFF -- mqrig rigqm mqm_r
  MQRIG_STORE=$(mktemp -d)
  export MQRIG_STORE
  local check=(env LD_LIBRARY_PATH=build-debug/lib/mqrig valgrind --quiet --error-exitcode=99 --leak-check=full
    --show-leak-kinds=definite --errors-for-leak-kinds=definite)
  "${check[@]}" build-debug/bin/rigqm create QM1
  "${check[@]}" build-debug/bin/rigqm mqsc QM1 -e 'DEFINE QLOCAL(Q1)' >/dev/null
  "${check[@]}" build-debug/bin/mqrig -qm QM1 -q Q1 -m hello -n 3 MQPMO_SYNCPOINT MQPER_PERSISTENT >/dev/null
  "${check[@]}" build-debug/bin/mqrig -qm QM1 -q Q1 -n 3 -brv >/dev/null
  "${check[@]}" build-debug/bin/mqrig -qm QM1 -q Q1 -n 3 MQGMO_SYNCPOINT >/dev/null
  local backup
  backup=$(mktemp -u)
  "${check[@]}" build-debug/bin/rigqm backup QM1 "$backup" >/dev/null
  "${check[@]}" build-debug/bin/rigqm check QM1
  "${check[@]}" build-debug/bin/rigqm end QM1
  "${check[@]}" build-debug/bin/rigqm delete QM1
  "${check[@]}" build-debug/bin/rigqm restore QM1 "$backup"
  rm -rf "$MQRIG_STORE" "$backup"
  unset MQRIG_STORE
  echo "no errors"
}

# One target, until it has had its CPU seconds: beside other work a run takes longer, and is not shorter for it.
# Sizes that an input only claims are refused: allocations fail, and that path is looked at too.
# What it finds of new paths goes into the build folder; a crash leaves its input there.
fuzz_target() {
  local target=$1 name wanted=${MQRIG_FUZZ_SECONDS:-600} spent=0 inputs=0 user system TIMEFORMAT='%0U %0S'
  name=$(basename "$target" _fuzzer)
  local found=build-fuzz/found/$name
  mkdir -p "$found"
  while [ "$spent" -lt "$wanted" ]; do
    if ! { time ASAN_OPTIONS=max_allocation_size_mb=64:allocator_may_return_null=1 \
      "$target" -max_total_time=$((wanted - spent)) -rss_limit_mb=4096 -timeout=60 -print_final_stats=1 \
      -close_fd_mask=2 -artifact_prefix="$found." "$found" "tests/fuzz/corpus/$name" >"$found.log" 2>&1; } 2>"$found.time"; then
      tail -n 40 "$found.log" >&2
      return 1
    fi
    read -r user system < <(tail -n 1 "$found.time")
    spent=$((spent + (user + system > 0 ? user + system : 1)))
    inputs=$((inputs + $(sed -n 's/^stat::number_of_executed_units: *//p' "$found.log")))
  done
  echo "$name: $inputs inputs in $spent s of CPU time"
}

fuzz_run() {
  step "fuzz targets, ${MQRIG_FUZZ_SECONDS:-600} s of CPU time each"
  cmake --preset debug -B build-fuzz -DMQRIG_FUZZ=ON -DMQRIG_BENCH=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DMQRIG_SANITIZE=fuzzer-no-link,address,undefined >/dev/null
  cmake --build build-fuzz --target fuzzers >build-fuzz/build.log || { tail -n 30 build-fuzz/build.log >&2; return 1; }
  export -f fuzz_target
  printf '%s\n' build-fuzz/tests/fuzz/*_fuzzer | xargs -P "$(nproc)" -I {} bash -c 'fuzz_target {}'
}

cppcheck_run() {
  step "cppcheck"
  # Buffers are left unfilled until they are written to, on purpose; valgrind and the compiler look for real faults.
  cppcheck --quiet --std=c++20 --inline-suppr --error-exitcode=1 --enable=warning,performance,portability \
    --suppress=missingInclude --suppress=missingIncludeSystem --suppress='*:mqi/*' \
    --suppress=uninitvar --suppress=uninitMemberVar -D_GNU_SOURCE \
    -I . -I mqi -I include -I src -j "$(nproc)" src tables qmgr rigqm
  echo "no findings"
}

# Tests in which no file can be written, or another user's program runs, would spoil the counts that every process adds
# to: they are left out, and so are two that take too long when lines are counted. Threads count atomically.
coverage() {
  step "coverage"
  local flags="--coverage -fprofile-update=atomic"
  cmake --preset debug -B build-coverage -DMQRIG_BENCH=OFF -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_C_FLAGS="$flags" >/dev/null
  cmake --build build-coverage | tail -n 1
  find build-coverage -name '*.gcda' -delete
  scripts/run_ctest.sh build-coverage -LE 'long|release_only' \
    -E '[Ss]weep|FullDisk|ShortWrite|random_arguments|RefusedFiles|Mutation|CrashRun|crash_run|PowerLoss|ThousandFiles'
  gcovr --root . --filter 'src/' --filter 'tables/' --filter 'qmgr/' --filter 'rigqm/' --exclude-throw-branches \
    --gcov-ignore-parse-errors --object-directory build-coverage --txt build-coverage/coverage.txt \
    --csv build-coverage/coverage.csv --print-summary |
    grep -E '^(lines|functions)'
  echo "by file: build-coverage/coverage.txt; what is not covered, and why: docs/coverage.md"
  local file unnamed=0
  for file in $(awk -F, 'NR > 1 && $2 > $3 { print $1 }' build-coverage/coverage.csv); do
    grep -qF "\`$file\`" docs/coverage.md || { echo "not in docs/coverage.md: $file"; unnamed=1; }
  done
  return $unnamed
}

for name in "${steps[@]}"; do
  case $name in
    kills) kills ;;
    faults) faults ;;
    soak | --soak) soak_run ;;
    valgrind) valgrind_run ;;
    fuzz) fuzz_run ;;
    cppcheck) cppcheck_run ;;
    coverage) coverage ;;
    *) echo "long.sh: no step '$name'" >&2; exit 2 ;;
  esac
done
step "done"
