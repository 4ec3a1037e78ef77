#!/usr/bin/env bash
# Changes the bundle's sources in small ways, one at a time, and lists the changes that no test notices.
#
#   scripts/mutate.sh [--help] [--count N] [--seed S] [--unit UNIT] [--list]
#
# Works on a copy in build/mutate; the sources are never touched. Takes N of the possible changes (default 300), chosen by the
# seed (default 1), of all units or of one. For each, the unit is compiled again and its own tests run, then all others.
# --list only prints the possible changes. A survivor is killed by a new test or explained as equivalent. Exit 1 when there
# are survivors.
set -euo pipefail
cd "$(dirname "$0")/.."

usage() { sed -n '2,/^set /p' "$0" | sed -n 's/^# \{0,1\}//p'; }

if [ "${1:-}" = --help ]; then
  usage
  exit 0
fi
scripts/setup.sh build test
exec python3 scripts/mutate.py "$@"
