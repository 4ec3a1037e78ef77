#!/usr/bin/env bash
# Draws the pictures of docs/architecture.md, docs/images/NAME.svg from docs/images/NAME.dot, and a console session,
# docs/images/console.svg, for which it builds bundle_host.
#
#   scripts/pictures.sh [--help]
#
# Each picture of a .dot file ends with a comment that holds the checksum of its source; a test compares them.
set -euo pipefail
. "$(dirname "$0")/common.bash"

[ $# -eq 0 ] || refuse "unknown argument '$1'"

scripts/setup.sh build pictures
for source in docs/images/*.dot; do
  picture=${source%.dot}.svg
  dot -Tsvg "$source" -o "$picture"
  echo "<!-- $(sha256sum <"$source" | cut -d ' ' -f 1) -->" >>"$picture"
done

quietly cmake --preset release
quietly cmake --build --preset release --target bundle_host ii_ascii_util
python3 -B scripts/console_picture.py build/release >docs/images/console.svg
