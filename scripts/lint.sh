#!/usr/bin/env bash
# Checks layout and habits: clang-format over all sources, clang-tidy over those of src, host, tools and examples.
#
#   scripts/lint.sh [--help] [--format-only]
#
# clang-tidy reads the compile commands of the release preset, so build that once before (scripts/test.sh does).
set -euo pipefail
cd "$(dirname "$0")/.."

usage() { sed -n '2,/^set /p' "$0" | sed -n 's/^# \{0,1\}//p'; }

case "${1:-}" in
  --help) usage; exit 0 ;;
  "" | --format-only) ;;
  *) echo "lint.sh: unknown option '$1'; see --help" >&2; exit 2 ;;
esac

scripts/setup.sh check
git ls-files -z '*.h' '*.cpp' | xargs -0 clang-format --dry-run --Werror
[ "${1:-}" != --format-only ] || exit 0

commands=build/release/compile_commands.json
if [ ! -f "$commands" ]; then
  echo "lint.sh: $commands is missing; run scripts/test.sh first" >&2
  exit 1
fi
# clang-tidy refuses GCC's own options.
mkdir -p build/lint
sed -E 's/ -f(no-gnu-unique|emit-class-debug-always)//g' "$commands" >build/lint/compile_commands.json
# Tests are written for their reader and full of what the checks dislike (fakes, raw tables); they are left out.
git ls-files -z 'src/*.cpp' 'host/*.cpp' 'tools/*.cpp' 'examples/*.cpp' |
  xargs -0 -n 1 -P "$(nproc)" clang-tidy --quiet -p build/lint 2>/dev/null
