#!/usr/bin/env bash
# Changes the bundle's sources in small ways, one at a time, and lists the changes that no test notices.
#
#   scripts/mutate.sh [--help] [--count N] [--seed S] [--unit UNIT]... [--jobs N] [--survivors] [--races] [--list]
#
# Works on a copy in build/mutate; the sources are never touched. Takes N of the possible changes (default 300), chosen by the
# seed (default 1), of all units or of some. For each, what it touches is compiled again and the tests of the bundle's code are
# run (those with the label "bundle"), the unit's own first, until one fails. build/mutate/verdicts says for each change what
# became of it.
#
# --survivors judges only those that survived last time. --races makes memory orders relaxed, and runs the tests with threads
# under ThreadSanitizer. --list only prints the possible changes.
#
# A survivor is killed by a new test, or explained in scripts/mutate.equivalent and left out from then on. Exit 1 when there are
# survivors.
set -euo pipefail
cd "$(dirname "$0")/.."

usage() { sed -n '2,/^set /p' "$0" | sed -n 's/^# \{0,1\}//p'; }

if [ "${1:-}" = --help ]; then
  usage
  exit 0
fi
scripts/setup.sh build test
exec python3 scripts/mutate.py "$@"
