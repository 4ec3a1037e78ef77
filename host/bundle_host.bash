# Bash completion for bundle_host. Takes options, commands and operations from the program's own help.

_bundle_host() {
  local word=${COMP_WORDS[COMP_CWORD]} program=${COMP_WORDS[0]} command="" at=1 choices=""
  local options='s/^ +(-[a-z],)?(--[a-z-]+).*/\2/p' names='s/^  ([a-z-]+) .*/\1/p'
  for (( ; at < COMP_CWORD; at++)); do
    case ${COMP_WORDS[at]} in
      -c | --config-dir | -f | --svc-conf | -b | --bundle | --log-file | --log-level) ((at++)) ;;
      -*) ;;
      *)
        command=${COMP_WORDS[at]}
        break
        ;;
    esac
  done
  case $command:${COMP_WORDS[COMP_CWORD - 1]} in
    :--log-level | log:log) choices="0 1 2 off" ;;
    call:call | call:--json | time:call) choices=$("$program" help call | sed -nE 's/^  (\w+) .*->.*/\1/p') ;;
    time:*) ((COMP_CWORD != at + 2)) || choices=call ;;
    help:help) choices=$("$program" help | sed -nE "$names") ;;
    :-c | :--config-dir | :-f | :--svc-conf | :-b | :--bundle | :--log-file | run:* | load:*) ;;
    :*) choices=$("$program" --help | sed -nE -e "$options" -e "$names") ;;
  esac
  mapfile -t COMPREPLY < <(if [ -n "$choices" ]; then compgen -W "$choices" -- "$word"; else compgen -f -- "$word"; fi)
}

complete -o filenames -F _bundle_host bundle_host
