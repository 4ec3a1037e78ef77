#!/usr/bin/env bash
# Makes HTML pages of the public headers (framework/ and include/). A declaration without a comment is an error.
#
#   scripts/docs.sh [--help] [DIRECTORY]
#
# The pages go to DIRECTORY/html (default: build/doxygen). Needs doxygen (scripts/setup.sh package).
set -euo pipefail
. "$(dirname "$0")/common.bash"

case "${1:-}" in
  -*) refuse "unknown option '$1'" ;;
  "") output=$PWD/build/doxygen ;;
  /*) output=$1 ;;
  *) output=$here/$1 ;;
esac
command -v doxygen >/dev/null || fail "doxygen is missing: install the Debian package doxygen"
mkdir -p "$output"
{ cat docs/Doxyfile; echo "OUTPUT_DIRECTORY = \"$output\""; } | doxygen -
