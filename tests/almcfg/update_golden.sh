#!/usr/bin/env bash
# Writes down what the built checker says about each broken example. Look at the difference before you commit it.
#
#   tests/almcfg/update_golden.sh ALMCFG
set -euo pipefail

[ $# -eq 1 ] || { sed -n '2,4s/^# \{0,1\}//p' "$0" >&2; exit 2; }
almcfg=$(realpath "$1")
cd "$(dirname "$0")/../.."
for example in examples/broken/*.csv; do
  name=$(basename "$example" .csv)
  "$almcfg" check "$example" >"tests/almcfg/golden/$name.txt" || [ $? -eq 1 ]
done
