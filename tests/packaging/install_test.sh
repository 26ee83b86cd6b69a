#!/usr/bin/env bash
# install_test.sh BUILD MANUAL: installs the build, and follows the manual: its program is built in each of the ways that
# it shows, and says what it shows. A block of the manual is found by the name behind the language of its fence.
set -euo pipefail
build=$1
manual=$2
work=$(mktemp -d "${TMPDIR:-/tmp}/mqrig-install.XXXXXX")
trap 'rm -rf "$work"' EXIT

fail() { echo "$*" >&2; exit 1; }

# The lines between ```LANGUAGE NAME and the end of the fence.
block() {
  awk -v name="$1" '/^```/ { if (inside) exit; if ($2 == name) { inside = 1; next } } inside' "$manual"
}

cmake --install "$build" --prefix "$work/first" >/dev/null
# It may be moved.
mv "$work/first" "$work/installed"
export PREFIX=$work/installed MQRIG_STORE=$work/store
unset LD_LIBRARY_PATH
export PATH=$PREFIX/bin:$PATH

for file in bin/mqrig bin/rigqm lib/mqrig/libmqm_r.so include/mqrig/cmqc.h include/mqrig/cmqxc.h \
  include/mqrig/cmqcfc.h lib/pkgconfig/mqrig.pc lib/cmake/mqrig/mqrigConfig.cmake share/doc/mqrig/embedded.md; do
  [ -e "$PREFIX/$file" ] || fail "$file is not installed"
done

block prepare >"$work/prepare.sh"
(cd "$work" && bash -eu prepare.sh >prepare.out) || fail "prepare: $(cat "$work/prepare.out")"
block expected >"$work/expected"
[ -s "$work/expected" ] || fail "the manual does not say what its program prints"

for way in cc pkg-config cmake; do
  mkdir "$work/$way"
  block hello.c >"$work/$way/hello.c"
  block CMakeLists.txt >"$work/$way/CMakeLists.txt"
  block "$way" >"$work/$way/build.sh"
  [ -s "$work/$way/hello.c" ] && [ -s "$work/$way/build.sh" ] || fail "$way: the manual does not show it"
  (cd "$work/$way" && bash -eu build.sh >build.out 2>&1) || fail "$way: $(cat "$work/$way/build.out")"
  # Builders print, too; the program comes last.
  tail -n "$(wc -l <"$work/expected")" "$work/$way/build.out" | diff "$work/expected" - || fail "$way: another output"
done

# The installed client finds the library beside it, unless another one is installed that goes first.
[ ! -e /opt/mqm/lib64/libmqm_r.so ] || export LD_LIBRARY_PATH=$PREFIX/lib/mqrig
mqrig -qm QM1 -q Q1 -m hello >/dev/null && mqrig -qm QM1 -q Q1 | grep -q hello || fail "mqrig does not run"
