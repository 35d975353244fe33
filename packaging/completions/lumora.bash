# bash completion for lumora. Commands, options and looks are asked of the tool itself.
_lumora_words() {
  case $1 in
    commands) lumora --help | awk '/^Commands:/{on=1;next} /^$/{on=0} on{print $1}' ;;
    options) lumora "${@:2}" --help 2>/dev/null | grep -oE -- '--[a-z][a-z-]*' | sort -u ;;
    looks) lumora looks --json | sed -n 's/.*"name": "\([^"]*\)".*/\1/p' ;;
  esac
}

_lumora() {
  local cur=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} words=
  if ((COMP_CWORD == 1)); then
    words="$(_lumora_words commands) --help --version"
  elif [[ $previous == --look || $previous == -l || $previous == --looks ]]; then
    words=$(_lumora_words looks)
  elif [[ $previous == --format || $previous == -f ]]; then
    words="rgba nv21 nv12"
  elif [[ $previous == --to ]]; then
    words="jpg png webp tif avif heic"
  elif ((COMP_CWORD == 2)) && [[ $previous == pack ]]; then
    words="create show check extract"
  elif [[ $cur != -* && ${COMP_WORDS[1]} == looks ]]; then
    words=$(_lumora_words looks)
  elif [[ $cur == -* ]]; then
    if [[ ${COMP_WORDS[1]} == pack ]]; then
      words=$(_lumora_words options pack "${COMP_WORDS[2]}")
    else
      words=$(_lumora_words options "${COMP_WORDS[1]}")
    fi
  fi
  if [[ -n $words ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur")
  else
    compopt -o default
    COMPREPLY=()
  fi
}
complete -F _lumora lumora
