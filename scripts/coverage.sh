#!/usr/bin/env bash
# Builds with coverage counters, runs the tests of the bundle's own code (those with the label "bundle"), and prints line and
# branch coverage of src/ and framework/, with every line and every branch that no test took.
#
#   scripts/coverage.sh [--help] [--html DIR] [CTEST-OPTION...]
#
# Exit 1 when a line of src/ or framework/ is not covered. --html writes the annotated sources too. Branches that only an
# exception takes are not counted.
set -euo pipefail
. "$(dirname "$0")/common.bash"

html=()
case "${1:-}" in
  --html)
    [ $# -ge 2 ] || refuse "--html needs a directory"
    mkdir -p "$2"
    html=(--html-details "$2/index.html")
    shift 2
    ;;
esac

scripts/setup.sh build test coverage

build=build/coverage
log=$build-tests.log
mkdir -p build
# Removes the counters of an earlier run, which would be added to those of this one.
[ ! -d "$build" ] || find "$build" -name '*.gcda' -delete
{
  cmake --preset coverage -DASCII_UTIL_BUILD_TESTS=ON -DASCII_UTIL_BUILD_TOOLS=OFF -DASCII_UTIL_BUILD_EXAMPLES=OFF \
    -DASCII_UTIL_OTHER_CXX=none &&
    cmake --build --preset coverage --target bundle_tests &&
    ctest --test-dir "$build" --label-regex bundle --output-on-failure --parallel "$(nproc)" "$@"
} >"$log" 2>&1 || {
  tail -n 40 "$log" >&2
  fail "the tests failed (above; all of it is in $log), so there is nothing to report"
}

gcovr --root . --object-directory "$build" --filter 'src/' --filter 'framework/' --exclude-unreachable-branches \
  --json build/coverage.json "${html[@]}" "$build"
python3 - build/coverage.json <<'REPORT'
import json
import sys


def share(taken):
    """How many of them are more than 0, as "3 of 4"."""
    return f"{sum(count > 0 for count in taken)} of {len(taken)}"


missed = []
all_lines, all_branches = [], []
print(f"{'file':34}{'lines':>14}{'branches':>16}")
for file in json.load(open(sys.argv[1], encoding="utf-8"))["files"]:
    code = [line for line in file["lines"] if not line.get("gcovr/noncode", False)]
    lines = [line["count"] for line in code]
    for line in code:
        # Branches that only an exception takes are removed here and not by gcovr, which overlooks those in a header that a
        # program includes and does not run.
        line["branches"] = [branch for branch in line["branches"] if not branch.get("throw", False)]
    branches = [branch["count"] for line in code for branch in line["branches"]]
    print(f"{file['file']:34}{share(lines):>14}{share(branches):>16}")
    all_lines += lines
    all_branches += branches
    for line in code:
        place = f"{file['file']}:{line['line_number']}"
        if line["count"] == 0:
            missed.append(f"line not covered: {place}")
        else:
            missed += [f"branch not covered: {place}, branch {number}"
                       for number, branch in enumerate(line["branches"]) if branch["count"] == 0]
print(f"{'all':34}{share(all_lines):>14}{share(all_branches):>16}")
print("\n".join(missed))
sys.exit(1 if any(count == 0 for count in all_lines) else 0)
REPORT
