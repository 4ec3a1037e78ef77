#!/usr/bin/env bash
# Draws the pictures of docs/architecture.md: docs/images/NAME.svg from docs/images/NAME.dot.
#
#   scripts/pictures.sh [--help]
#
# Each picture ends with a comment that holds the checksum of its source; a test compares them.
set -euo pipefail
cd "$(dirname "$0")/.."

usage() { sed -n '2,/^set /p' "$0" | sed -n 's/^# \{0,1\}//p'; }

case "${1:-}" in
  --help) usage; exit 0 ;;
  "") ;;
  *) echo "pictures.sh: unknown option '$1'; see --help" >&2; exit 2 ;;
esac

scripts/setup.sh pictures
for source in docs/images/*.dot; do
  picture=${source%.dot}.svg
  dot -Tsvg "$source" -o "$picture"
  echo "<!-- $(sha256sum <"$source" | cut -d ' ' -f 1) -->" >>"$picture"
done
