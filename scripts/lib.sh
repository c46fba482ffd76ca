# Shared by the scripts beside it: packages, steps with a log each, presets.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
logs=$root/build/logs
mkdir -p "$logs"
cd "$root"

# Where ODBC programs find the driver that the preset driver builds; nothing is registered elsewhere.
export ODBCSYSINI=$root/build/driver/driver

# step TEXT COMMAND... runs a command with its output in a file of its own, and shows one line. On
# failure it prints the command, the end of its output and where the rest is, and ends the script.
step() {
  local text=$1 log start
  shift
  log=$logs/$(printf '%s' "$text" | tr -cs 'A-Za-z0-9' '-' | tr 'A-Z' 'a-z' | sed 's/-$//').log
  start=$SECONDS
  printf '%-60s' "$text ..."
  if "$@" >"$log" 2>&1; then
    printf 'ok (%d s)\n' $((SECONDS - start))
    return 0
  fi
  printf 'FAILED\n\n'
  tail -n 60 "$log"
  printf '\nThis command failed: %s\nIts whole output: %s\n' "$*" "${log#"$root"/}"
  exit 1
}

# Debian packages that the scripts need; nothing is installed by hand.
build_packages=(cmake ninja-build g++ g++-mingw-w64-x86-64-posix wine64 libwine-dev wixl)
driver_packages=(unixodbc unixodbc-dev libsqlite3-dev libutf8proc-dev python3-pyodbc)
test_packages=(googletest clang clang-format clang-tidy libclang-rt-14-dev)
bench_packages=(libbenchmark-dev python3)
release_packages=(git python3 zip)
proof_packages=(python3 llvm cppcheck)

# use_wine_prefix FOLDER makes the prefix there if need be and holds its server until the script ends.
# Locale and overrides are those of the tests.
wine=$root/tests/wine/wine
use_wine_prefix() {
  export WINEPREFIX=$1 WINEDEBUG=-all,err+virtual LC_ALL=C.UTF-8
  export WINEDLLOVERRIDES='mscoree,mshtml,winemenubuilder.exe='
  unset DISPLAY
  step 'Wine prefix' tests/wine/prefix.sh begin "$WINEPREFIX"
  trap 'tests/wine/prefix.sh end "$WINEPREFIX" >/dev/null 2>&1' EXIT
}

missing_packages() {
  local package
  for package in "$@"; do
    dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed ||
      printf '%s\n' "$package"
  done
}

apt_install() {
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  "${as_root[@]}" apt-get update &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
      apt-get install -y --no-install-recommends "$@"
}

install_packages() {
  local missing
  mapfile -t missing < <(missing_packages "$@")
  if [ "${#missing[@]}" -gt 0 ]; then
    step "Installing ${#missing[@]} Debian packages" apt_install "${missing[@]}"
  fi
}

build_preset() {
  local preset=$1
  shift
  cmake --preset "$preset" && cmake --build --preset "$preset" "$@"
}

# For the scripts in scripts/proof. read_form "$@" sets `form` to short, or to long for --long.
read_form() {
  form=short
  case "${1:-}" in
    '') ;;
    --long) form=long ;;
    *) printf 'usage: %s [--long]\n' "$0" >&2; exit 2 ;;
  esac
  [ $# -le 1 ] || { printf 'usage: %s [--long]\n' "$0" >&2; exit 2; }
}

# report_figure NAME LINE... prints what a proof found, and leaves it in build/proof, where
# scripts/test looks for it.
report_figure() {
  local name=$1
  shift
  mkdir -p build/proof
  printf '%s\n' "$@" | tee "build/proof/$name.txt"
}
