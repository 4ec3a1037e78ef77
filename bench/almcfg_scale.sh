#!/usr/bin/env bash
# Measures how almcfg check scales: files of a million lines, time and memory beside the bundle's own load.
#
#   bench/almcfg_scale.sh [--help] [LINES [ROUNDS]]
#
# Builds what it needs in build/bench-almcfg. The aim: at most 3 times the time of the load, save where nearly every
# line has a finding to write, and less than 4 times the size of the file as memory. Figures are for reading; nothing
# fails on them.
set -euo pipefail
cd "$(dirname "$0")/.."

usage() { sed -n '2,/^set /p' "$0" | sed -n 's/^# \{0,1\}//p'; }
if [ "${1:-}" = --help ]; then
  usage
  exit 0
fi
lines=${1:-1000000}
rounds=${2:-5}

scripts/setup.sh build bench
cmake -S . -B build/bench-almcfg -G Ninja -DCMAKE_BUILD_TYPE=Release -DASCII_UTIL_BUILD_TESTS=OFF -DASCII_UTIL_BUILD_BENCH=ON \
  >build/bench-almcfg.log 2>&1 || { tail -n 20 build/bench-almcfg.log >&2; exit 1; }
cmake --build build/bench-almcfg --target almcfg almcfg_scale >build/bench-almcfg.log 2>&1 ||
  { tail -n 20 build/bench-almcfg.log >&2; exit 1; }

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# One record a line; three records a line; every key twice; every line with a finding.
awk -v n="$lines" 'BEGIN { for (i = 0; i < n; i++) printf "Node%07d\tPort%02d\tAlarm%d\t%d\t%d\n", i, i % 97, i % 13, i % 100, i % 1000 }' \
  >"$folder/plain.csv"
awk -v n="$lines" 'BEGIN { for (i = 0; i < n; i++) printf "Node%07d/Spare%07d/Test%07d\tPort%02d\tAlarm%d\t%d\t%d\n", i, i, i, i % 97, i % 13, i % 100, i % 1000 }' \
  >"$folder/alternatives.csv"
awk -v n="$lines" 'BEGIN { for (i = 0; i < n; i++) printf "Node%07d\tPort%02d\tAlarm%d\t%d\t%d\n", i % (n / 2), i % 2, 7, 7, i % 1000 }' \
  >"$folder/every-key-twice.csv"
awk -v n="$lines" 'BEGIN { for (i = 0; i < n; i++) printf "Node%07d\tPort%02d\tAlarm%d\t0%d\t%d\n", i, i % 97, i % 13, i % 100, i % 1000 }' \
  >"$folder/every-line-odd.csv"

echo "$lines lines, best of $rounds rounds, $(nproc) processors, $(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -n 1)"
build/bench-almcfg/tools/almcfg/almcfg_scale build/bench-almcfg/tools/almcfg/almcfg "$rounds" "$folder"/*.csv
