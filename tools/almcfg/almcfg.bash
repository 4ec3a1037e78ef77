# bash completion for almcfg

_almcfg() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command="" i
  for ((i = 1; i < COMP_CWORD; i++)); do
    case ${COMP_WORDS[i]} in
      check | show | lookup | diff)
        command=${COMP_WORDS[i]}
        break
        ;;
    esac
  done

  local choices=""
  case $command:$before in
    check:--format) choices="json sarif text" ;;
    show:--format) choices="html json tsv" ;;
    lookup:--format | diff:--format) choices="json text" ;;
    *:--color) choices="always auto never" ;;
    :*) choices="check show lookup diff --help --version" ;;
    *)
      if [[ $word == -* ]]; then
        choices="--help --format --color"
        [[ $command != check ]] || choices+=" --strict"
        [[ $command != show ]] || choices+=" --sort"
      else
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
      fi
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$choices" -- "$word")
}

complete -o filenames -F _almcfg almcfg
