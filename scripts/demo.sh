#!/usr/bin/env bash
# Demonstrates the project: the operators' checker on a configuration with mistakes, every operation of the bundle, and an
# example agent that turns 30 alarms into text messages. The agent's calls are recorded and replayed.
#
#   scripts/demo.sh [--help]
#
# Installs the Debian packages that are missing, builds what the demonstration needs into build/demo, and runs it. Log
# records are indented, at the place where they were written.
set -euo pipefail
. "$(dirname "$0")/common.bash"

[ $# -eq 0 ] || refuse "unknown argument '$1'"

scripts/setup.sh build

build=build/demo
targets=(almcfg bundle_host ii_ascii_util ii_ascii_recorder alarm_agent_example)
if [ ! -f "$build/build.ninja" ]; then
  echo "Building into $build"
  quietly cmake --preset release -B "$build" -DASCII_UTIL_BUILD_TESTS=OFF
fi
quietly cmake --build "$build" --target "${targets[@]}"

# The dynamic linker searches here for the libraries that the svc.conf files name.
export LD_LIBRARY_PATH="$PWD/$build/src:$PWD/$build/tools/recorder:$PWD/$build/examples/alarm_agent${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"

if [ -t 1 ]; then
  title=$'\e[1m' dim=$'\e[2m' plain=$'\e[0m'
else
  title='' dim='' plain=''
fi

heading() { printf '\n%s%s%s\n' "$title" "$1" "$plain"; }
explain() { printf '%s\n' "$@" ""; }

# A log record starts with a date, a time and a level in brackets. Only the time of day is shown here.
indent_log() {
  sed -E "s/^[0-9]{4}-[0-9]{2}-[0-9]{2}T([0-9:.]+)Z \[([0-9-])\] (.*)\$/${dim}    | \1 [\2] \3${plain}/"
}

host() { "$build/host/bundle_host" --config-dir examples/config "$@" 2>&1 | indent_log; }

config=examples/config/ii_asciiagent_bundle/AlarmConfig.csv

heading "1. Before a configuration is used: almcfg check"
explain "The example configuration has mistakes on purpose. The agent would write no message about most of them; the checker" \
  "names each one, with the reason and the remedy. Its exit code is 1."
"$build/tools/almcfg/almcfg" check "$config" || [ $? -eq 1 ]

heading "2. Every operation of the bundle: bundle_host run examples/every_operation.txt"
explain "The host loads the bundle, which reads the same configuration: one log record (indented) for each line that it" \
  "rejects, one for its start. Then each operation is called; results and out values follow the call."
host --svc-conf examples/svc.conf --echo run examples/every_operation.txt

heading "3. An agent that uses the bundle: examples/alarm_agent"
explain "The agent reads one alarm per line, asks the configuration for the severity, and prints a message for each line of" \
  "examples/alarm_agent/feed.txt, in order. The first line of the feed, and the line that configures it:"
sed -n 's/^/    /; 1p' examples/alarm_agent/feed.txt
grep -P 'BTS.*\tLOS\t7\t' "$config" | sed 's/^/    /'
echo
host --svc-conf examples/alarm_agent/svc.conf quit

heading "4. What really happens: the agent's calls recorded, replayed and compared with the configuration"
explain "The recorder is a bundle between the two. Its file has a line for each call; the replay makes the same calls again and" \
  "finds no difference. The coverage names the queries that no line serves: callers get a successful 0 for them."
calls=$build/calls.jsonl
sed "s|calls\.jsonl|$calls|" examples/alarm_agent/recorded.svc.conf > "$build/recorded.svc.conf"
host --svc-conf "$build/recorded.svc.conf" quit >/dev/null
sed -n '2s/^/    /p' "$calls"
echo
host --log-level off --svc-conf examples/svc.conf replay "$calls"
echo
"$build/tools/almcfg/almcfg" coverage "$config" --calls "$calls" 2>/dev/null
