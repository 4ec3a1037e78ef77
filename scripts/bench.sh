#!/usr/bin/env bash
# Builds and runs the benchmarks, which compare the loaded bundle with what a caller could use instead.
#
#   scripts/bench.sh [--help] [--smoke | --report] [--bundle NAME=LIBRARY]... [FILTER]
#
# FILTER is a regular expression over the names "operation/input/contestant". --bundle adds another build of the bundle to
# every comparison. --smoke only checks that the comparisons run and get equal answers, except on 10^5 lines or more and on
# colliding keys. --report runs all in several processes, in repetitions in random order, and writes docs/benchmarks.md; with
# FILTER or --bundle it prints the page instead. That takes about ten minutes on an idle machine.
set -euo pipefail
. "$(dirname "$0")/common.bash"

filter=
mode=run
bundles=()
while [ $# -gt 0 ]; do
  case "$1" in
    --smoke | --report) mode=${1#--} ;;
    --bundle)
      [[ ${2:-} == *=* ]] || refuse "--bundle needs NAME=LIBRARY"
      bundles+=("--bundle=$2"); shift ;;
    -*) refuse "unknown option '$1'" ;;
    *) filter=$1 ;;
  esac
  shift
done

scripts/setup.sh build test bench
quietly cmake --preset release -DASCII_UTIL_BUILD_BENCH=ON
quietly cmake --build --preset release --target ascii_util_bench
program=build/release/bench/ascii_util_bench

case $mode in
  smoke) exec ctest --test-dir build/release -L bench --output-on-failure ;;
  run) exec "$program" "${bundles[@]}" ${filter:+"--benchmark_filter=$filter"} ;;
esac

results=build/release/bench/results
rm -rf "$results"
mkdir -p "$results"

# run NAME FILTER REPETITIONS SECONDS: one group in one process, its repetitions in random order. Writes no file when the
# script's FILTER matches none of the group's benchmarks.
run() {
  local both=$2
  if [ -n "$filter" ]; then
    both=$("$program" "${bundles[@]}" --benchmark_list_tests --benchmark_filter="$2" | grep -E -- "$filter" |
      sed 's/[][\.*^$+?(){}|]/\\&/g; s/.*/^&$/' | paste -sd '|') || return 0
  fi
  echo "$1" >&2
  "$program" "${bundles[@]}" --benchmark_filter="$both" --benchmark_repetitions="$3" --benchmark_min_time="$4" \
    --benchmark_enable_random_interleaving=true --benchmark_format=json >"$results/$1.json"
}

# Three processes, because speed depends on the addresses that a process gets.
for process in 1 2 3; do
  run "1_alarm_$process" '^Alarm/' 15 0.02
  run "2_fields_$process" '^(GetKeyValue|IsContain|SplitStr|ParseListMap)/' 11 0.005
  for lines in 3 4 5 6; do
    run "3_lookup_${lines}_$process" "^GetAlmCfgValue/10.$lines records, (random|sequential)" 7 0.02
  done
  run "4_load_$process" '^LoadConfig/10.[34]' 7 0.02
  run "5_load_$process" '^LoadConfig/10.[56]' 3 0.02
  run "6_reload_$process" '(^Reload/|during loads)' 3 0.1
  run "7_text_$process" '^(Trim|ToUpper|StrToLower|Str2Num|Num2Str|GetTimeStamp)/' 11 0.005
  run "8_coding_$process" '^(GetURLEncoding|GetURLDecoding|SetURLDecoding|utf8toiso8859)/' 9 0.005
done
run 9_memory '^Memory/' 1 0.1

if [ -z "$filter" ] && [ ${#bundles[@]} -eq 0 ]; then
  python3 bench/report.py "$results" bench/remarks.md >"$results/page.md"
  mv "$results/page.md" docs/benchmarks.md
else
  python3 bench/report.py "$results" bench/remarks.md
fi
