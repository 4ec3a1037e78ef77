#!/usr/bin/env bash
# Builds and runs the benchmarks: every operation beside what one would take instead.
#
#   scripts/bench.sh [--help] [FILTER] [--report]
#
# FILTER is a regular expression over the benchmarks' names, "operation/input/contestant". With --report every group is
# run in repetitions that take turns, and docs/benchmarks.md and its plots are written from the medians; that takes some
# eight minutes, and the machine should have nothing else to do. With both, the report is only printed.
set -euo pipefail
cd "$(dirname "$0")/.."

usage() { sed -n '2,/^set /p' "$0" | sed -n 's/^# \{0,1\}//p'; }

filter=.
report=false
for argument in "$@"; do
  case "$argument" in
    --help) usage; exit 0 ;;
    --report) report=true ;;
    -*) echo "bench.sh: unknown option '$argument'; see --help" >&2; exit 2 ;;
    *) filter=$argument ;;
  esac
done

scripts/setup.sh build test bench
cmake --preset release -DASCII_UTIL_BUILD_BENCH=ON >/dev/null
cmake --build --preset release --target ascii_util_bench ascii_util_host_bench >/dev/null
programs=build/release/bench

if ! $report; then
  "$programs/ascii_util_bench" --benchmark_filter="$filter"
  "$programs/ascii_util_host_bench" --benchmark_filter="$filter"
  exit 0
fi

results=build/release/bench/results
rm -rf "$results"
mkdir -p "$results"

# run NAME PROGRAM FILTER REPETITIONS SECONDS: one group in one process, its repetitions in random turns.
run() {
  [[ $filter = . || $3 =~ $filter || $1 =~ $filter ]] || return 0
  echo "$1: $4 repetitions" >&2
  "$programs/$2" --benchmark_filter="$3" --benchmark_repetitions="$4" --benchmark_min_time="$5" \
    --benchmark_enable_random_interleaving=true --benchmark_format=json >"$results/$1.json"
}

# How fast a program is depends on which memory it was given, a table's speed a lot, so the median is over three processes.
for process in 1 2 3; do
  run "text_$process" ascii_util_bench '^(Trim|StrToUpper|StrToLower|ToUpper|Str2Num|Num2Str)/' 7 0.005
  run "fields_$process" ascii_util_bench '^(GetKeyValue|IsKeyValueAboveOne|IsContain|SplitStr|ParseListMap)/' 7 0.005
  run "coding_$process" ascii_util_bench '^(GetURLEncoding|GetURLDecoding|SetURLDecoding)/' 5 0.005
  run "host_$process" ascii_util_host_bench '^(GetTimeStamp|utf8toiso8859)/' 7 0.01
  run "lookup_$process" ascii_util_bench '^(Lookup|GetAlmCfgValue)/' 3 0.1
done
run readers ascii_util_bench '^Readers/' 9 0.2
run reload ascii_util_bench '^Reload/' 5 0.1
run memory ascii_util_bench '^Memory/' 1 0.1
run load_small ascii_util_bench '^LoadConfig/10\^3' 11 0.02
run load_middle ascii_util_bench '^LoadConfig/10\^5' 5 0.1
run load_large ascii_util_bench '^LoadConfig/10\^6' 3 0.1

if [[ $filter = . ]]; then
  python3 bench/report.py "$results" docs
else
  python3 bench/report.py "$results"
fi
