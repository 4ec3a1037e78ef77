# bash completion for almcfg

_almcfg() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command="" i
  for ((i = 1; i < COMP_CWORD; i++)); do
    case ${COMP_WORDS[i]} in
      check | fix | show | lookup | diff | coverage)
        command=${COMP_WORDS[i]}
        break
        ;;
    esac
  done

  local choices=""
  case $command:$before in
    check:--format) choices="json sarif text" ;;
    show:--format) choices="html json tsv" ;;
    lookup:--format | diff:--format | coverage:--format) choices="json text" ;;
    check:--select | check:--ignore | check:--explain | fix:--select | fix:--ignore)
      choices=$(almcfg check --help 2>/dev/null | sed -n '/^Codes:/,/^$/s/^  \([a-z0-9-]*\) .*/\1/p')
      ;;
    *:--color) choices="always auto never" ;;
    :*) choices="check fix show lookup diff coverage --help --version" ;;
    *)
      if [[ $word == -* ]]; then
        choices="--help --stdin-name --color"
        [[ $command == fix ]] || choices+=" --format"
        [[ $command != fix ]] || choices+=" --unsafe --in-place --backup --diff --select --ignore --quiet"
        [[ $command != check ]] || choices+=" --strict --select --ignore --max-findings --quiet --explain"
        [[ $command != coverage ]] || choices+=" --calls --strict"
        [[ $command != show ]] || choices+=" --sort --calls"
      else
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
      fi
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$choices" -- "$word")
}

complete -o filenames -F _almcfg almcfg
