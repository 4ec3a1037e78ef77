#!/usr/bin/env bash
# Checks the subjects of commits: `area: imperative what`, lower case after the colon, at most 72 characters. An area is a
# folder or a file of the commit or of its parent, without capital letters in its path; several are separated by ", ".
#
#   scripts/commits.sh [--help] [RANGE]
#
# RANGE is what git log takes (default: every commit after the one that introduced the rule). Exit 1 with one line for each
# subject that breaks the rule. A clone that lacks the range's commits passes, and says so.
set -euo pipefail
. "$(dirname "$0")/common.bash"

case "${1:-}" in
  -*) refuse "unknown option '$1'" ;;
esac
range=${1:-e090c52..HEAD}
# The areas of commits up to this one are not compared with the tree: some are names that the tree never had.
areas_after=3c910fa

if ! git rev-parse --quiet --verify "${range%%..*}^{commit}" >/dev/null 2>&1; then
  echo "commits.sh: ${range%%..*} is not in this clone, so no subject is checked"
  exit 0
fi
# has_areas COMMIT SUBJECT: whether each area of the subject exists.
has_areas() {
  local area areas
  IFS=', ' read -ra areas <<<"${2%%:*}"
  for area in "${areas[@]}"; do
    git cat-file -e "$1:$area" 2>/dev/null || git cat-file -e "$1^:$area" 2>/dev/null || return 1
  done
}
checked=0 bad=0
while IFS= read -r line; do
  subject=${line#* }
  checked=$((checked + 1))
  if [ ${#subject} -gt 72 ]; then
    echo "commits.sh: ${line%% *}: ${#subject} characters, at most 72 are allowed: $subject" >&2
  elif ! [[ $subject =~ ^[a-z.][a-z0-9_./-]*(,\ [a-z.][a-z0-9_./-]*)*:\ [^A-Z\ ] ]]; then
    echo "commits.sh: ${line%% *}: expected 'area: imperative what' in lower case: $subject" >&2
  elif ! git merge-base --is-ancestor "${line%% *}" "$areas_after" 2>/dev/null && ! has_areas "${line%% *}" "$subject"; then
    echo "commits.sh: ${line%% *}: name an existing folder or file before the colon: $subject" >&2
  else
    continue
  fi
  bad=$((bad + 1))
done < <(git log --no-merges --abbrev=7 --format='%h %s' "$range")
echo "$checked subjects checked, $bad rejected"
[ "$bad" -eq 0 ]
