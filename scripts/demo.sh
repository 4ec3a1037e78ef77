#!/usr/bin/env bash
# Shows the bundle at work: every operation called once, then an agent that turns 30 alarms into text messages.
#
#   scripts/demo.sh [--help]
#
# Installs the Debian packages that are missing, builds what the demonstration needs into build/demo, and runs it. Log
# lines stand where they came up, behind a bar; colours only on a terminal.
set -euo pipefail
cd "$(dirname "$0")/.."

usage() { sed -n '2,/^set /p' "$0" | sed -n 's/^# \{0,1\}//p'; }

case "${1:-}" in
  --help) usage; exit 0 ;;
  "") ;;
  *) echo "demo.sh: unknown option '$1'; see --help" >&2; exit 2 ;;
esac

scripts/setup.sh build

build=build/demo
log=$(mktemp)
trap 'rm -f "$log"' EXIT

# Quiet while it goes well; the whole story when it does not.
quietly() {
  if ! "$@" >"$log" 2>&1; then
    cat "$log" >&2
    echo "demo.sh: failed: $*" >&2
    exit 1
  fi
}

targets=(bundle_host ii_ascii_util alarm_agent_example)
if [ ! -f "$build/build.ninja" ]; then
  echo "Building into $build"
  quietly cmake --preset release -B "$build" -DASCII_UTIL_BUILD_TESTS=OFF
fi
quietly cmake --build "$build" --target "${targets[@]}"

# Where the dynamic linker finds the libraries that the svc.conf files name.
export LD_LIBRARY_PATH="$PWD/$build/src:$PWD/$build/examples/alarm_agent${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"

if [ -t 1 ]; then
  title=$'\e[1m' dim=$'\e[2m' plain=$'\e[0m'
else
  title='' dim='' plain=''
fi

heading() { printf '\n%s%s%s\n\n' "$title" "$1" "$plain"; }

# Log lines start with a time and a level in brackets. Of the time the clock is enough.
show() {
  sed -E "s/^[0-9]{4}-[0-9]{2}-[0-9]{2}T([0-9:.]+)Z \[([0-9-])\] (.*)\$/${dim}    | \1 [\2] \3${plain}/"
}

host() { "$build/host/bundle_host" --config-dir examples/config "$@" 2>&1 | show; }

heading "1. Every operation: examples/every_operation.txt, on the configuration in examples/config"
host --svc-conf examples/svc.conf --echo run examples/every_operation.txt

heading "2. An agent that lives on it: a message for every line of examples/alarm_agent/feed.txt"
echo "The feed's first line, and what is configured for it:"
sed -n 's/^/    /; 1p' examples/alarm_agent/feed.txt
grep -P 'BTS.*\tLOS\t7\t' examples/config/ii_asciiagent_bundle/AlarmConfig.csv | sed 's/^/    /'
echo
host --svc-conf examples/alarm_agent/svc.conf quit
