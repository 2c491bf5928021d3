# Completion of gromlit, gromlit-session and gromlit-tool in bash. Installed once under each name.

# The commands of gromlit-tool and their options are asked of the program itself: they are those that
# it has. Its help gives one of them on each line that is indented by two blanks.
_gromlit_tool_commands() {
  "$1" --help 2>/dev/null | sed -nE '/^Subcommands:/,$s/^  ([a-z][a-z-]*)( .*)?$/\1/p'
}

_gromlit_tool_options() {
  "$1" ${2:+"$2"} --help 2>/dev/null | sed -nE 's/^  (-[^ ]+).*/\1/p' | tr ',' '\n'
}

_gromlit_remote_words() {
  gromlit --help 2>/dev/null | sed -nE '/-remote/{n;p;}'
}

# Files with one of the endings $2..., and folders, that begin with $1.
_gromlit_files() {
  local begin=$1 ending path
  shift
  while IFS= read -r path; do COMPREPLY+=("$path"); done < <(compgen -d -- "$begin")
  for ending in "$@"; do
    while IFS= read -r path; do COMPREPLY+=("$path"); done < <(compgen -f -X "!*.$ending" -- "$begin")
  done
  compopt -o filenames 2>/dev/null
}

_gromlit_words() {
  local word
  while IFS= read -r word; do COMPREPLY+=("$word"); done < <(compgen -W "$2" -- "$1")
}

_gromlit() {
  local word=${COMP_WORDS[COMP_CWORD]} former=${COMP_WORDS[COMP_CWORD - 1]}
  COMPREPLY=()
  case $former in
    -path) _gromlit_files "$word" ;;
    -display) ;;
    -remote) _gromlit_words "$word" "$(_gromlit_remote_words)" ;;
    *) _gromlit_words "$word" "-display -path -remote -help --help --version" ;;
  esac
}

_gromlit_session() {
  local word=${COMP_WORDS[COMP_CWORD]} former=${COMP_WORDS[COMP_CWORD - 1]}
  COMPREPLY=()
  case $former in
    -path | --skeleton) _gromlit_files "$word" ;;
    -display) ;;
    --autostart) _gromlit_words "$word" "on off status" ;;
    *)
      _gromlit_words "$word" \
        "-path -display --prepare --no-help --skeleton --autostart --help --version"
      ;;
  esac
}

_gromlit_tool() {
  local word=${COMP_WORDS[COMP_CWORD]} program=${COMP_WORDS[0]} command=${COMP_WORDS[1]}
  COMPREPLY=()
  if [ "$COMP_CWORD" -eq 1 ]; then
    _gromlit_words "$word" "$(_gromlit_tool_commands "$program") --help --version"
  elif [[ $word == -* ]]; then
    _gromlit_words "$word" "$(_gromlit_tool_options "$program" "$command")"
  else
    case $command in
      pack | import) _gromlit_files "$word" json ;;
      match | explain) _gromlit_files "$word" sla ;;
      *) _gromlit_files "$word" sls sla user json log ;;
    esac
  fi
}

complete -F _gromlit gromlit
complete -F _gromlit_session gromlit-session
complete -F _gromlit_tool gromlit-tool
