#!/usr/bin/env bash
# Takes the picture of almcfg's HTML page: docs/images/almcfg-page.png.
#
#   scripts/screenshots.sh [--help] [DIRECTORY]
#
# With DIRECTORY it writes there instead, and the page in a narrow window and in dark colours beside it. Builds almcfg and
# installs what is missing.
set -euo pipefail
cd "$(dirname "$0")/.."

usage() { sed -n '2,/^set /p' "$0" | sed -n 's/^# \{0,1\}//p'; }

case "${1:-}" in
  --help) usage; exit 0 ;;
  -*) echo "screenshots.sh: unknown option '$1'; see --help" >&2; exit 2 ;;
esac
[ $# -le 1 ] || { echo "screenshots.sh: one directory at most; see --help" >&2; exit 2; }

scripts/setup.sh build page
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
if ! { cmake --preset release && cmake --build build/release --target almcfg; } >"$work/log" 2>&1; then
  cat "$work/log" >&2
  echo "screenshots.sh: the build failed (above)" >&2
  exit 1
fi

# A fixed time, so that the same page gives the same picture. almcfg reports the file's findings on standard error.
SOURCE_DATE_EPOCH=1795219200 build/release/tools/almcfg/almcfg show --format html \
  examples/config/ii_asciiagent_bundle/AlarmConfig.csv >"$work/page.html" 2>"$work/log"
PYTHONPATH=tests/almcfg/page python3 -B - "$work/page.html" "${1:-}" <<'END'
import sys
from browser import Browser

page, directory = sys.argv[1:]
with Browser(1100, 640) as browser:
    browser.open(page)
    for _ in range(3):
        browser.press("n")
    browser.picture((directory or "docs/images") + "/almcfg-page.png")
    if directory:
        browser.dark()
        browser.settle()
        browser.picture(directory + "/almcfg-page-dark.png")
        browser.dark(False)
        browser.resize(420, 800)
        browser.open(page)
        browser.picture(directory + "/almcfg-page-narrow.png")
END
