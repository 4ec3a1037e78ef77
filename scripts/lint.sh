#!/usr/bin/env bash
# Checks the sources: words and clang-format on all, clang-tidy on those of src, host, tools and examples.
#
#   scripts/lint.sh [--help] [--format-only] [FILE...]
#
# Checks the given files, or all files of the working tree, new ones included. Uses clang-format-14 and
# clang-tidy-14, because other versions format differently. clang-tidy reads the compile commands of the release preset, so
# build that preset first (scripts/test.sh does).
set -euo pipefail
. "$(dirname "$0")/common.bash"

format_only=false
while [[ ${1:-} == -* ]]; do
  case "$1" in
    --format-only) format_only=true ;;
    *) refuse "unknown option '$1'" ;;
  esac
  shift
done

# Existing files, by pattern or as given.
if [ $# -gt 0 ]; then
  for file in "$@"; do
    [[ -f $file && $file =~ \.(h|cpp)$ ]] || refuse "'$file' is not a .h or .cpp file below $PWD"
  done
  files=("$@")
else
  mapfile -t files < <(git ls-files --cached --others --exclude-standard --deduplicate '*.h' '*.cpp' |
    while IFS= read -r file; do [ ! -f "$file" ] || echo "$file"; done)
fi

scripts/setup.sh lint
python3 tests/docs/words_test.py "$@"
clang-format-14 --dry-run --Werror "${files[@]}"

# clang-tidy does not check the tests: fakes and raw tables, which it warns about, make them easier to read.
tidied=()
$format_only || mapfile -t tidied < <(printf '%s\n' "${files[@]}" | grep -E '^(src|host|tools|examples)/.*\.cpp$')
summary="${#files[@]} sources by clang-format, ${#tidied[@]} by clang-tidy: nothing found"
if [ ${#tidied[@]} -eq 0 ]; then
  echo "$summary"
  exit 0
fi
commands=build/release/compile_commands.json
[ -f "$commands" ] || fail "$commands is missing; run scripts/test.sh first"
# clang-tidy rejects options that only GCC has.
mkdir -p build/lint
sed -E 's/ -f(no-gnu-unique|emit-class-debug-always)//g' "$commands" >build/lint/compile_commands.json
printf '%s\0' "${tidied[@]}" | xargs -0 -n 1 -P "$(nproc)" clang-tidy-14 --quiet -p build/lint 2>/dev/null
echo "$summary"
