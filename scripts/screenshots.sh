#!/usr/bin/env bash
# Takes the picture of almcfg's HTML page: docs/images/almcfg-page.png.
#
#   scripts/screenshots.sh [--help] [DIRECTORY]
#
# With DIRECTORY it writes there instead, and the page in a narrow window and in dark colours beside it. Builds almcfg and
# installs what is missing.
set -euo pipefail
. "$(dirname "$0")/common.bash"

[[ ${1:-} != -* ]] || refuse "unknown option '$1'"
[ $# -le 1 ] || refuse "one directory at most"

scripts/setup.sh build page
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
quietly cmake --preset release
quietly cmake --build --preset release --target almcfg

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
