#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test (those in a browser only where Chromium is installed).
#
#   scripts/test.sh [--help] [PRESET] [CTEST-OPTION...]
#
# PRESET is a preset of CMakePresets.json: release (default), debug, asan, tsan or coverage. What follows it goes to
# ctest: `scripts/test.sh asan -R almtable` runs the tests of one unit under the sanitizers.
set -euo pipefail
. "$(dirname "$0")/common.bash"

preset=release
case "${1:-}" in
  release | debug | asan | tsan | coverage) preset=$1; shift ;;
  -* | "") ;;
  *) refuse "unknown preset '$1'; there are release, debug, asan, tsan and coverage" ;;
esac

scripts/setup.sh build test check package

echo "Building ($preset)"
quietly cmake --preset "$preset" -DASCII_UTIL_BUILD_TESTS=ON
quietly cmake --build --preset "$preset"

export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1:strict_string_checks=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1}"
if [ -f tests/lsan.supp ]; then
  export LSAN_OPTIONS="${LSAN_OPTIONS:-suppressions=$PWD/tests/lsan.supp:print_suppressions=0}"
fi
ctest --test-dir "build/$preset" --output-on-failure --parallel "$(nproc)" "$@"
