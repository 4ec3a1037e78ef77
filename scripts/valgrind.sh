#!/usr/bin/env bash
# Runs the unit tests of the bundle, built by the release preset (scripts/test.sh), under valgrind's memcheck.
#
#   scripts/valgrind.sh [--help] [PROGRAM...]
#
# PROGRAM is a test program such as logmsg_test (default: those of framework/ and of every folder of src/). The comparisons with
# the literal rules are left out: they test whole input spaces, which takes hours here and seconds in every other build. The
# single-step tests are left out too: valgrind does not emulate that mode of the processor. Exit 1 when valgrind or a test finds
# an error.
set -euo pipefail
. "$(dirname "$0")/common.bash"

[[ ${1:-} != -* ]] || refuse "unknown option '$1'"
wanted=" $* "

scripts/setup.sh test
folders=(framework text log alarmconfig interface service)
programs=()
while IFS= read -r program; do
  [ $# -eq 0 ] || [[ $wanted == *" ${program##*/} "* ]] || continue
  programs+=("$program")
done < <(cd build/release/tests 2>/dev/null && find "${folders[@]}" -name '*_test' -type f -executable 2>/dev/null | sort)
[ ${#programs[@]} -gt 0 ] || fail "no such test program in build/release/tests; run scripts/test.sh first"

# Programs run in parallel, so the output of each is kept until it ends.
export LOCPATH=$PWD/build/release/tests/text/locales ASCII_UTIL_TRIALS=0
check() {
  local output
  # nouserintercepts: some programs replace operator new and delete, and their tests need these called.
  if output=$(valgrind --quiet --soname-synonyms=somalloc=nouserintercepts --trace-children=yes --leak-check=full \
    --errors-for-leak-kinds=definite --error-exitcode=9 \
    "build/release/tests/$1" --gtest_brief=1 --gtest_filter='-*AgreesWith*:*TheLiteralRules*:AlarmTableInSingleSteps.*' 2>&1); then
    echo "${1##*/}: $(grep -oE '\[  PASSED  \] [0-9]+' <<<"$output" | awk '{ sum += $4 } END { print sum }') tests"
  else
    echo "$output"
    echo "valgrind.sh: ${1##*/} failed (above); repeat with scripts/valgrind.sh ${1##*/}"
    return 1
  fi
}
export -f check
printf '%s\n' "${programs[@]}" | xargs -P "$(nproc)" -I {} bash -c 'check {}'
echo "${#programs[@]} programs passed under valgrind"
