#!/usr/bin/env bash
# Builds a fuzz target with Clang's libFuzzer under AddressSanitizer and UndefinedBehaviorSanitizer, and runs it.
#
#   scripts/fuzz.sh [--help] TARGET|all SECONDS [LIBFUZZER-OPTION...]
#
# TARGET is one of the fuzz targets in fuzz/: alarm_config, key_value, list_map, split, url_encode, url_decode,
# str2num, host_command_line, config_items, recording; `all` runs one after the other. Inputs that reach new code are kept in
# build/fuzz-corpus/TARGET and used again; the checked-in ones are fuzz/corpus/TARGET. Prints the number of executions.
# When an input fails: exit 1, with the input's path and how to run it again. Add that input to the checked-in corpus and
# write a test for the unit.
set -euo pipefail
. "$(dirname "$0")/common.bash"

[ $# -ge 2 ] || refuse "expected a target and a number of seconds"
target=$1 seconds=$2
shift 2
[[ $seconds =~ ^[1-9][0-9]*$ ]] || refuse "'$seconds' is not a number of seconds"
if [ "$target" = all ]; then
  targets=()
  for dictionary in fuzz/*/*.dict; do
    targets+=("$(basename "$dictionary" .dict)")
  done
else
  [ -f "$(echo fuzz/*/"$target.dict")" ] || refuse "there is no target '$target'"
  targets=("$target")
fi

scripts/setup.sh build test check
quietly cmake --preset fuzz
quietly cmake --build --preset fuzz --target "${targets[@]/#/fuzz_}"

log=$(mktemp)
trap 'rm -f "$log"' EXIT
all_executions=0
for target in "${targets[@]}"; do
  found=build/fuzz-corpus/$target
  mkdir -p "$found"
  if ! "build/fuzz/fuzz/fuzz_$target" "$found" "fuzz/corpus/$target" -dict="$(echo fuzz/*/"$target.dict")" \
    -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -artifact_prefix="build/fuzz-corpus/$target-" \
    -print_final_stats=1 "$@" >"$log" 2>&1; then
    tail -n 60 "$log" >&2
    fail "$target found something (above); run it again with build/fuzz/fuzz/fuzz_$target FILE"
  fi
  executions=$(awk '/^stat::number_of_executed_units/ { print $2 }' "$log")
  echo "$target: $executions executions, nothing found"
  all_executions=$((all_executions + executions))
done
[ ${#targets[@]} -eq 1 ] || echo "${#targets[@]} targets: $all_executions executions, nothing found"
