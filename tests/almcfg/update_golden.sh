#!/usr/bin/env bash
# Writes the built checker's output for each broken example to tests/almcfg/golden. Read the difference before you commit it.
#
#   tests/almcfg/update_golden.sh [--help] ALMCFG
#
# ALMCFG is the program, such as build/release/tools/almcfg/almcfg.
set -euo pipefail

usage() { sed -n '2,/^set /p' "$0" | sed -n 's/^# \{0,1\}//p'; }

case "${1:-}" in
  --help) usage; exit 0 ;;
esac
[ $# -eq 1 ] || { usage >&2; exit 2; }
almcfg=$(realpath "$1")
cd "$(dirname "$0")/../.."
for example in examples/broken/*.csv; do
  name=$(basename "$example" .csv)
  "$almcfg" check "$example" >"tests/almcfg/golden/$name.txt" || [ $? -eq 1 ]
done
