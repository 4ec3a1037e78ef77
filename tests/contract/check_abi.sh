#!/usr/bin/env bash
# Compares the binary interface of the bundle with the checked-in baseline.
#
#   tests/contract/check_abi.sh [--help] [--update] LIBRARY
#
# LIBRARY is the build's libii_ascii_util_types.so: the exporting units of the bundle, compiled with type descriptions.
# --update rewrites the baseline from LIBRARY instead of comparing.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)

usage() { sed -n '2,/^set /p' "$0" | sed -n 's/^# \{0,1\}//p'; }

update=no
case "${1:-}" in
  --help) usage; exit 0 ;;
  --update) update=yes; shift ;;
esac
[ $# -eq 1 ] || { usage >&2; exit 2; }
library=$1
baseline=$here/libii_ascii_util.abi

describe() {
  abidw --suppressions "$here/foreign.supp" --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed \
    --no-parameter-names "$library"
}

if [ "$update" = yes ]; then
  # The baseline is only touched by a description that succeeded.
  description=$(describe)
  echo "$description" >"$baseline"
  exit 0
fi

now=$(mktemp --suffix=.abi)
trap 'rm -f "$now"' EXIT
describe >"$now"
if report=$(abidiff --no-show-locs --harmless "$baseline" "$now"); then
  exit 0
fi
cat >&2 <<END
$report

The binary interface differs from the baseline tests/contract/libii_ascii_util.abi: callers in other bundles were built
against that.
  - If something was changed, removed, reordered or inserted, undo it; callers would call the wrong slot or symbol. It
    may only come with a new SOVERSION of the library and a word in the change log.
  - If something was only appended after the last slot, or a function was added, it is compatible: review the report,
    then write the new baseline and commit it with the change:
      tests/contract/check_abi.sh --update $library
END
exit 1
