#!/usr/bin/env bash
# Installs the Debian packages that a task needs and that are missing; says which, and is quiet when none is.
#
#   scripts/setup.sh [--help] [GROUP...]
#
# Groups: build (default), test, coverage, check, bench, package. Needs root or sudo only when something is missing.
set -euo pipefail

usage() { sed -n '2,/^set /p' "$0" | sed -n 's/^# \{0,1\}//p'; }

packages_of() {
  case "$1" in
    build) echo "g++ cmake ninja-build pkg-config python3 libace-dev libcli11-dev nlohmann-json3-dev libedit-dev" ;;
    test) echo "libgtest-dev locales libgmock-dev binutils valgrind python3 abigail-tools" ;;
    coverage) echo "gcovr" ;;
    check) echo "clang clang-format clang-tidy libclang-rt-14-dev" ;;
    bench) echo "libbenchmark-dev libabsl-dev libboost1.81-dev libboost-url1.81-dev libpoco-dev libglib2.0-dev" \
                "libcurl4-openssl-dev libfmt-dev libtbb-dev gnuplot-nox" ;;
    package) echo "dpkg-dev file lintian doxygen groff-base make" ;;
    *) echo "setup.sh: unknown group '$1'; there are build, test, coverage, check, bench and package" >&2; return 1 ;;
  esac
}

is_installed() { [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

if [ "${1:-}" = --help ]; then
  usage
  exit 0
fi
[ $# -gt 0 ] || set -- build

missing=()
for group in "$@"; do
  packages=$(packages_of "$group")
  for package in $packages; do
    is_installed "$package" || missing+=("$package")
  done
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "Installing ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "setup.sh: not root and no sudo here; as root run: apt-get install ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi
install() {
  "${as_root[@]}" apt-get update -q &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "$@"
}
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! install "${missing[@]}" >"$log" 2>&1; then
  tail -n 20 "$log" >&2
  echo "setup.sh: the installation failed (above)" >&2
  exit 1
fi
