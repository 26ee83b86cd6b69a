#!/usr/bin/env bash
# clang-tidy over the product's files that changed since $MQRIG_TIDY_BASE; without it, since the branch left
# origin/main, or, on main itself, over the last twelve hours' commits. tidy.sh --all takes every file.
set -euo pipefail
cd "$(dirname "$0")/.."

[ -f build/compile_commands.json ] || cmake --preset release >/dev/null
if [ "${1:-}" = --all ]; then
  files=$(git ls-files '*.cpp')
else
  base=${MQRIG_TIDY_BASE:-$(git merge-base HEAD origin/main 2>/dev/null || true)}
  [ "$base" = "$(git rev-parse HEAD)" ] && base=
  [ -n "$base" ] || base=$(git rev-list -1 --before='12 hours ago' HEAD)
  files=$(if [ -n "$base" ]; then git diff --name-only --diff-filter=d "$base" -- '*.cpp'; else git ls-files '*.cpp'; fi)
fi
files=$(grep -E '^(src|tables|qmgr|rigqm)/' <<<"$files" || true)
[ -n "$files" ] || { echo "no changed files"; exit 0; }
echo "$(wc -l <<<"$files") files"
# One file a process: the analyzer takes what it saw in one file for the next (va_list).
xargs -P "$(nproc)" -n 1 clang-tidy -p build --quiet <<<"$files" 2>/dev/null
