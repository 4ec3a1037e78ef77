#!/usr/bin/env bash
# Makes HTML pages of the public headers (framework/ and include/). A declaration without a comment is an error.
#
#   scripts/docs.sh [--help] [DIRECTORY]
#
# The pages go to DIRECTORY/html (default: build/doxygen). Needs doxygen (scripts/setup.sh package).
set -euo pipefail
here=$PWD
cd "$(dirname "$0")/.."

usage() { sed -n '2,/^set /p' "$0" | sed -n 's/^# \{0,1\}//p'; }

case "${1:-}" in
  --help) usage; exit 0 ;;
  -*) echo "docs.sh: unknown option '$1'; see --help" >&2; exit 2 ;;
  "") output=$PWD/build/doxygen ;;
  /*) output=$1 ;;
  *) output=$here/$1 ;;
esac
if ! command -v doxygen >/dev/null; then
  echo "docs.sh: doxygen is missing: install the Debian package doxygen" >&2
  exit 1
fi
mkdir -p "$output"
{ cat docs/Doxyfile; echo "OUTPUT_DIRECTORY = \"$output\""; } | doxygen -
