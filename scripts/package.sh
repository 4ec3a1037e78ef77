#!/usr/bin/env bash
# Builds the Debian packages libii-ascii-util, libii-ascii-util-dev and ii-ascii-util-tools.
#
#   scripts/package.sh [--help] [--build DIR] [--output DIR]
#
# Without --build it installs what is missing, builds the release preset without tests in build/package and packs that; --build
# packs a build directory that is there already, as it stands. --output is where the packages go (default: packages/ in the build
# directory). Times in the packages are SOURCE_DATE_EPOCH or, when that is not set, the time of the last commit, so that the same
# build gives the same packages.
set -euo pipefail
here=$PWD
cd "$(dirname "$0")/.."

usage() { sed -n '2,/^set /p' "$0" | sed -n 's/^# \{0,1\}//p'; }

fail() { echo "package.sh: $1" >&2; exit "${2:-1}"; }

absolute() { case "$1" in /*) echo "$1" ;; *) echo "$here/$1" ;; esac; }

build= output=
while [ $# -gt 0 ]; do
  case "$1" in
    --help) usage; exit 0 ;;
    --build | --output)
      [ $# -ge 2 ] || fail "$1 needs a directory; see --help" 2
      if [ "$1" = --build ]; then build=$(absolute "$2"); else output=$(absolute "$2"); fi
      shift 2 ;;
    *) fail "unknown option '$1'; see --help" 2 ;;
  esac
done

if [ -z "$build" ]; then
  scripts/setup.sh build package
  build=$PWD/build/package
  cmake --preset release -B "$build" -DASCII_UTIL_BUILD_TESTS=OFF -DASCII_UTIL_BUILD_EXAMPLES=OFF >/dev/null
  cmake --build "$build"
fi
[ -f "$build/CPackConfig.cmake" ] || fail "$build is no configured build directory of this project"
output=${output:-$build/packages}

if [ -z "${SOURCE_DATE_EPOCH:-}" ]; then
  SOURCE_DATE_EPOCH=$(git log -1 --format=%ct 2>/dev/null) || SOURCE_DATE_EPOCH=$(stat -c %Y CHANGELOG.md)
fi
export SOURCE_DATE_EPOCH

log=$(mktemp)
trap 'rm -f "$log"' EXIT
umask 022
if ! cpack --config "$build/CPackConfig.cmake" -B "$output" >"$log" 2>&1; then
  cat "$log" >&2
  fail "cpack failed (above)"
fi
rm -rf "$output/_CPack_Packages"
ls "$output"/*.deb
