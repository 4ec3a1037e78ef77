#!/usr/bin/env bash
# Draws the pictures of docs/architecture.md, docs/images/NAME.svg from docs/images/NAME.dot, and a console session,
# docs/images/console.svg, for which it builds bundle_host.
#
#   scripts/pictures.sh [--help]
#
# Each picture of a .dot file ends with a comment that holds the checksum of its source; a test compares them.
set -euo pipefail
cd "$(dirname "$0")/.."

usage() { sed -n '2,/^set /p' "$0" | sed -n 's/^# \{0,1\}//p'; }

case "${1:-}" in
  --help) usage; exit 0 ;;
  "") ;;
  *) echo "pictures.sh: unknown option '$1'; see --help" >&2; exit 2 ;;
esac

scripts/setup.sh build pictures
for source in docs/images/*.dot; do
  picture=${source%.dot}.svg
  dot -Tsvg "$source" -o "$picture"
  echo "<!-- $(sha256sum <"$source" | cut -d ' ' -f 1) -->" >>"$picture"
done

log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! { cmake --preset release && cmake --build build/release --target bundle_host ii_ascii_util; } >"$log" 2>&1; then
  cat "$log" >&2
  echo "pictures.sh: the build failed (above)" >&2
  exit 1
fi
python3 -B scripts/console_picture.py build/release >docs/images/console.svg
