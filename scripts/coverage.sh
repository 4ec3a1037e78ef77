#!/usr/bin/env bash
# Builds with coverage counters, runs the tests, and prints line and branch coverage of src/ and framework/, with every line
# and every branch that no test took.
#
#   scripts/coverage.sh [--help] [--html DIR] [CTEST-OPTION...]
#
# Exit 1 when a line of src/ or framework/ is not covered. --html writes the annotated sources too.
set -euo pipefail
cd "$(dirname "$0")/.."

usage() { sed -n '2,/^set /p' "$0" | sed -n 's/^# \{0,1\}//p'; }

html=()
case "${1:-}" in
  --help) usage; exit 0 ;;
  --html)
    [ $# -ge 2 ] || { echo "coverage.sh: --html needs a directory" >&2; exit 2; }
    mkdir -p "$2"
    html=(--html-details "$2/index.html")
    shift 2
    ;;
esac

scripts/setup.sh build test check coverage
# Counters of an earlier run would count for this one.
[ ! -d build/coverage ] || find build/coverage -name '*.gcda' -delete
scripts/test.sh coverage "$@" >build/coverage-tests.log 2>&1 || {
  tail -n 40 build/coverage-tests.log >&2
  echo "coverage.sh: tests failed (above), so there is nothing to report" >&2
  exit 1
}

report() {
  gcovr --root . --object-directory build/coverage --filter 'src/' --filter 'framework/' \
    --exclude-throw-branches --exclude-unreachable-branches "$@"
}
report --txt /dev/stdout
report --branches --txt /dev/stdout | sed -n '/^TOTAL/p' | sed 's/^TOTAL/branches:/'
report --json build/coverage.json
python3 - build/coverage.json <<'END'
import json
import sys

missed_lines = 0
for file in json.load(open(sys.argv[1], encoding="utf-8"))["files"]:
    for line in file["lines"]:
        if line["count"] == 0 and not line.get("gcovr/noncode", False):
            print(f"line not covered: {file['file']}:{line['line_number']}")
            missed_lines += 1
        for number, branch in enumerate(line["branches"]):
            if line["count"] > 0 and branch["count"] == 0 and not branch.get("throw", False):
                print(f"branch not covered: {file['file']}:{line['line_number']}, branch {number}")
sys.exit(1 if missed_lines else 0)
END
[ ${#html[@]} -eq 0 ] || report "${html[@]}"
