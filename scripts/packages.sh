# Sourced by the other scripts: the Debian packages that each needs, and how they are installed.

mqrig_build_packages="g++ cmake ninja-build pkg-config libsqlite3-dev liblmdb-dev"
mqrig_test_packages="$mqrig_build_packages googletest patch sqlite3 binutils util-linux locales"
mqrig_ci_packages="$mqrig_test_packages g++-multilib clang-tidy python3"
mqrig_long_packages="$mqrig_ci_packages clang libclang-rt-14-dev valgrind cppcheck gcovr"

# need_packages NAME...: installs those that are missing, saying so; root or sudo is wanted only then.
need_packages() {
  local missing=() package
  for package in "$@"; do
    [ "$(dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null)" = "ii " ] || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing Debian packages: ${missing[*]}"
  local root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "Please install them as root and run this again." >&2; return 1; }
    root=(sudo)
  fi
  "${root[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# configure_and_build PRESET [CMAKE_OPTION...] -- TARGET...: says what it does in one line, and more when it fails.
configure_and_build() {
  local preset=$1 options=() log
  shift
  while [ $# -gt 0 ] && [ "$1" != "--" ]; do options+=("$1"); shift; done
  shift
  log=$(mktemp)
  echo "Building the $preset preset ..."
  if ! { cmake --preset "$preset" "${options[@]}" && cmake --build --preset "$preset" --target "$@"; } >"$log" 2>&1; then
    grep -vE '^\[[0-9]+/[0-9]+\] ' "$log" | tail -n 60 >&2
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
}
