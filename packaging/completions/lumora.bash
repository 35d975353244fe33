# bash completion for lumora. Commands, options, looks and textures are asked of the tool itself.
_lumora_commands() { lumora --help | awk '/^Commands:/{on=1;next} /^$/{on=0} on{print $1}'; }
_lumora_options() { lumora "$@" --help 2>/dev/null | grep -oE -- '--[a-z][a-z-]*' | sort -u; }
_lumora_looks() { lumora looks --json | sed -n 's/.*"name": "\([^"]*\)".*/\1/p'; }
_lumora_textures() {
  lumora looks --json |
    awk -F'"' '/"textures": \[$/{on=1;next} /\]/{on=0} on{print $2}'
}

# What may stand behind an option: _lumora_values COMMAND OPTION
_lumora_values() {
  case $2 in
    --look | -l) _lumora_looks ;;
    --looks)
      _lumora_looks
      [[ $1 != gallery ]] || echo original
      ;;
    --format | -f) echo rgba nv21 nv12 ;;
    --to) [[ $1 == lut ]] && echo cube hald tiles || echo jpg png webp tif avif heic ;;
    --profile) echo srgb keep ;;
    --direction) echo 0 1 2 3 ;;
    --slot) _lumora_textures | sed 's/$/=/' ;;
  esac
}

_lumora() {
  local command=${COMP_WORDS[1]} cur=${COMP_WORDS[COMP_CWORD]}
  local previous=${COMP_WORDS[COMP_CWORD - 1]} words= begun=
  # The shell divides words at "=": "--look=fu" is three of them.
  if [[ $cur == "=" ]]; then
    cur=
  elif [[ $previous == "=" ]] && ((COMP_CWORD > 2)); then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  if ((COMP_CWORD == 1)); then
    words="$(_lumora_commands) --help --version"
  elif [[ $previous == -* ]]; then
    words=$(_lumora_values "$command" "$previous")
  fi
  if [[ -n $words ]]; then
    :
  elif ((COMP_CWORD == 2)) && [[ $command == pack ]]; then
    words="create show check extract"
  elif [[ $cur == -* ]]; then
    [[ $command == pack ]] && command="pack ${COMP_WORDS[2]}"
    words=$(_lumora_options $command)
  elif [[ $command == looks ]]; then
    words=$(_lumora_looks)
  fi
  if [[ $previous == --look* || $previous == -l ]] && [[ $cur == *,* ]]; then
    begun=${cur%,*},
    cur=${cur##*,}
  fi
  if [[ -n $words ]]; then
    mapfile -t COMPREPLY < <(compgen -P "$begun" -W "$words" -- "$cur")
    [[ $previous != --slot ]] || compopt -o nospace 2>/dev/null
  else
    compopt -o default 2>/dev/null
    COMPREPLY=()
  fi
}
complete -F _lumora lumora
