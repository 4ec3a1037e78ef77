#!/usr/bin/env bash
# Builds the Debian packages libii-ascii-util, libii-ascii-util-dev and ii-ascii-util-tools, with their debug symbols.
#
#   scripts/package.sh [--help] [--output DIR] [DPKG-BUILDPACKAGE-OPTION...]
#
# Installs what is missing, copies the working tree into DIR and has dpkg-buildpackage build the copy. DIR is also where
# the packages go (default: build/package); earlier ones there are removed. The options are passed on: `-aarm64` builds for
# another architecture. The package's own tests are not run; scripts/test.sh runs them all. The same sources and the same
# installed packages give the same files.
set -euo pipefail
. "$(dirname "$0")/common.bash"

output=
options=()
while [ $# -gt 0 ]; do
  case "$1" in
    --output)
      [ $# -ge 2 ] || refuse "$1 needs a directory"
      case "$2" in /*) output=$2 ;; *) output=$here/$2 ;; esac
      shift ;;
    -*) options+=("$1") ;;
    *) refuse "unknown argument '$1'" ;;
  esac
  shift
done

# A cross build needs the target's libraries in place of the machine's, which setup.sh would install.
[[ " ${options[*]} " == *" -a"* ]] || scripts/setup.sh build package
output=${output:-$PWD/build/package}
work=$output/ii-ascii-util.work
tree=$work/ii-ascii-util
rm -rf "$work" "$output"/ii-ascii-util*_* "$output"/libii-ascii-util*_*
mkdir -p "$tree"
tar --create --exclude=./build --exclude=./.git --exclude=ii-ascii-util.work . | tar --extract --directory "$tree"

umask 022
export DEB_BUILD_OPTIONS="${DEB_BUILD_OPTIONS:-nocheck parallel=$(nproc)}" DEB_BUILD_PROFILES="${DEB_BUILD_PROFILES:-nocheck}"
log=$output/build.log
if ! (cd "$tree" && dpkg-buildpackage --build=full --no-sign "${options[@]}") >"$log" 2>&1; then
  tail -n 40 "$log" >&2
  fail "the build failed (above; all of it in $log)"
fi
mv "$work"/*_* "$output"
rm -rf "$work"
ls "$output"/*.deb
