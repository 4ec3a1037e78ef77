#!/usr/bin/env bash
# Runs the example agent at full speed for SECONDS, in rounds in one process. Each round loads the bundle and the agent, loads
# the configuration again while the agent runs, and unloads both.
#
#   scripts/soak.sh [--help] SECONDS
#
# At the end it prints the rounds, the messages and the resident memory after the first minute (after a quarter of the time,
# when that is less) and at the end. Exit 1 when a command fails, when the number of messages differs from the number of alarms,
# or when memory grew by more than 5 % and more than 1 MiB.
set -euo pipefail
. "$(dirname "$0")/common.bash"

case "${1:-}" in
  "" | *[!0-9]* | 0*) refuse "expected a number of seconds" ;;
esac
seconds=$1
settle=$((seconds / 4 < 60 ? seconds / 4 : 60))

scripts/setup.sh build
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
quietly cmake --preset release
quietly cmake --build --preset release --target bundle_host ii_ascii_util alarm_agent_example
# Uses copies, so that a build during the run does not replace the libraries.
(cd build/release && cp host/bundle_host host/libbundle_host.so src/libii_ascii_util.so \
  examples/alarm_agent/libalarm_agent_example.so "$work")
export LD_LIBRARY_PATH="$work${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"

# A feed that keeps the agent busy while the configuration is loaded again.
for _ in $(seq 200); do
  cat examples/alarm_agent/feed.txt
done >"$work/feed"
per_round=$(grep -cvE '^(#|$)' "$work/feed")

mkfifo "$work/commands" "$work/answers"
"$work/bundle_host" --config-dir examples/config --log-file /dev/null run - <"$work/commands" >"$work/answers" \
  2>"$work/errors" &
host=$!
exec 3>"$work/commands" 4<"$work/answers"

resident() { awk '/^VmRSS:/ { print $2 }' "/proc/$host/status"; }

# Reads one answer for each command, so that a round starts after the host has finished the previous one.
command_host() {
  local answer
  echo "$1" >&3
  if ! IFS= read -r -t 120 -u 4 answer; then
    cat "$work/errors" >&2
    fail "no answer to: $1"
  fi
  [[ $answer == $2* ]] || fail "'$1' was answered '$answer'"
}

rounds=0 messages=0 settled=0
begin=$SECONDS
while [ $((SECONDS - begin)) -lt "$seconds" ]; do
  command_host "load ii_ascii_util" "loaded "
  command_host "load alarm_agent_example --feed $work/feed --out $work/out --workers 2" "loaded "
  for _ in 1 2 3 4 5; do
    command_host "init ii_ascii_util" "initialised "
  done
  command_host "unload alarm_agent_example" "unloaded "
  command_host "call IsValid" "result: 1"
  command_host "unload ii_ascii_util" "unloaded "
  written=$(wc -l <"$work/out")
  [ "$written" -eq "$per_round" ] || fail "round $((rounds + 1)): $written messages for $per_round alarms"
  rm "$work/out"
  rounds=$((rounds + 1)) messages=$((messages + written))
  if [ "$settled" -eq 0 ] && [ $((SECONDS - begin)) -ge "$settle" ]; then
    settled=$(resident)
  fi
done
[ "$settled" -gt 0 ] || settled=$(resident)
last=$(resident)
exec 3>&-
wait "$host" || { cat "$work/errors" >&2; fail "the host ended with an error"; }
[ ! -s "$work/errors" ] || { head "$work/errors" >&2; fail "the host wrote to standard error (above)"; }

echo "$rounds rounds, $messages messages for as many alarms; resident memory $settled KiB after ${settle} s, $last KiB at the end"
[ $((last - settled)) -le 1024 ] || [ $((20 * (last - settled))) -le "$settled" ] || fail "memory grew"
