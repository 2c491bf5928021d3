#!/bin/sh
# Runs a command with another compiler in place of its own. CMake has one compiler for a build; it
# takes this for a launcher.
#
#   cmake/instead.sh COMPILER [LAUNCHER...] OTHER ARGUMENT...
#
# OTHER, the last word before the first one that begins with "-", is what COMPILER stands in for.
compiler=$1
shift
before=
while [ $# -gt 1 ]; do
  case $2 in -*) break ;; esac
  before="$before $1"
  shift
done
shift
# shellcheck disable=SC2086  # words without blanks: names of programs
exec $before "$compiler" "$@"
