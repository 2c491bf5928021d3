#compdef gromlit gromlit-session gromlit-tool
# Completion of gromlit, gromlit-session and gromlit-tool in zsh.

# The commands of gromlit-tool and their options are asked of the program itself: they are those that
# it has. Its help gives one of them on each line that is indented by two blanks.
_gromlit_tool_commands() {
  local line
  local -a commands
  for line in ${(f)"$($words[1] --help 2>/dev/null | sed -nE '/^Subcommands:/,$s/^  ([a-z][a-z-]*) +(.*)$/\1:\2/p')"}; do
    commands+=("$line")
  done
  _describe command commands
}

_gromlit_tool() {
  if (( CURRENT == 2 )); then
    _gromlit_tool_commands
    compadd -- --help --version
  elif [[ $words[CURRENT] == -* ]]; then
    local -a options
    options=(${(f)"$($words[1] $words[2] --help 2>/dev/null | sed -nE 's/^  (-[^ ]+).*/\1/p' | tr ',' '\n')"})
    compadd -- $options
  else
    case $words[2] in
      pack | import) _files -g '*.json' ;;
      match | explain) _files -g '*.sla' ;;
      *) _files -g '*.(sls|sla|user|json|log)' ;;
    esac
  fi
}

_gromlit_remote_words() {
  local -a remote
  remote=(${=${"$(gromlit --help 2>/dev/null | sed -nE '/-remote/{n;p;}')"}})
  compadd -- $remote
}

case $service in
  gromlit)
    _arguments -S : \
      '-display[X server to contact]:display:' \
      '-path[directory of symbols, plug-ins and options]:directory:_files -/' \
      '-remote[have the running gromlit obey the word]:word:_gromlit_remote_words' \
      '(- *)'{-h,-help,--help}'[print a short help]' \
      '(- *)--version[print the version]'
    ;;
  gromlit-session)
    _arguments -S : \
      '-path[directory of symbols, plug-ins and options]:directory:_files -/' \
      '-display[X server to contact]:display:' \
      '--prepare[only make the directory ready]' \
      '--no-help[do not open the help at a first start]' \
      '--skeleton[the starter library]:directory:_files -/' \
      '--autostart[start with the desktop]:choice:(on off status)' \
      '(- *)'{-h,--help}'[print a short help]' \
      '(- *)--version[print the version]'
    ;;
  gromlit-tool) _gromlit_tool ;;
esac
