# Sourced by .ci/run and the other scripts here: changes to the top of the source tree, answers --help, and defines what
# several of them need. `here` is the directory that the script was started in.

here=$PWD
script=$(realpath "$0")
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit

fail() { echo "${0##*/}: $1" >&2; exit 1; }

# Ends the script because of its arguments.
refuse() { echo "${0##*/}: $1; see --help" >&2; exit 2; }

# quietly COMMAND...: ends the script when the command fails, and prints the command's output only then.
quietly() {
  local log
  log=$(mktemp)
  if ! "$@" >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    fail "failed: $*"
  fi
  rm -f "$log"
}

# Prints the comment at the top of the script.
if [[ " $* " == *" --help "* ]]; then
  sed -n '2,/^set /p' "$script" | sed -n 's/^# \{0,1\}//p'
  exit 0
fi
