#!/usr/bin/env bash
# Installs the missing Debian packages that a task needs and prints their names; prints nothing when none is missing.
#
#   scripts/setup.sh [--help] [GROUP...]
#
# Groups: build (default), test, coverage, check, lint, bench, package, page, pictures, port. Needs root or sudo only when something
# is missing.
set -euo pipefail
. "$(dirname "$0")/common.bash"

# "a|b" means the first package that this Debian release has.
packages_of() {
  case "$1" in
    build) echo "g++ cmake ninja-build pkgconf python3 libace-dev libcli11-dev nlohmann-json3-dev libedit-dev" ;;
    test) echo "libgtest-dev locales libgmock-dev binutils valgrind python3 abigail-tools tmux ace-netsvcs" ;;
    coverage) echo "gcovr" ;;
    check) echo "clang libclang-rt-dev" ;;
    lint) echo "clang-format-14 clang-tidy-14" ;;
    bench) echo "libbenchmark-dev libabsl-dev libboost-url-dev|libboost-url1.81-dev libfmt-dev liburcu-dev" ;;
    package) echo "build-essential debhelper dpkg-dev file lintian doxygen groff-base make" ;;
    page) echo "chromium fonts-dejavu-core" ;;
    pictures) echo "graphviz fonts-dejavu-core" ;;
    port) echo "debootstrap qemu-user-static binfmt-support" ;;
    *) refuse "unknown group '$1'; there are build, test, coverage, check, lint, bench, package, page, pictures and port" ;;
  esac
}

# A package may be installed for several architectures; checks the one that is built for.
native=$(dpkg --print-architecture)
is_installed() {
  dpkg-query -W -f='${db:Status-Status} ${Architecture}\n' "$1" 2>/dev/null | grep -qE "^installed (all|$native)\$"
}

any_installed() {
  local package
  for package in ${1//|/ }; do
    if is_installed "$package"; then return; fi
  done
  return 1
}

first_available() {
  local package
  for package in ${1//|/ }; do
    if apt-cache show "$package" >/dev/null 2>&1; then break; fi
  done
  echo "$package"
}

[ $# -gt 0 ] || set -- build

missing=()
for group in "$@"; do
  packages=$(packages_of "$group")
  for package in $packages; do
    any_installed "$package" || missing+=("$package")
  done
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "Installing ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || fail "not root and no sudo here; as root run: scripts/setup.sh $*"
  as_root=(sudo)
fi
install() {
  local package packages=()
  "${as_root[@]}" apt-get update -q || return
  for package in "$@"; do
    packages+=("$(first_available "$package")")
  done
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${packages[@]}"
}
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! install "${missing[@]}" >"$log" 2>&1; then
  tail -n 20 "$log" >&2
  fail "the installation failed (above)"
fi
