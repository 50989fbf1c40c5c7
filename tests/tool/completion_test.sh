#!/usr/bin/env bash
# What the shell offers for each place of a command line of pwsealtool.
# usage: completion_test.sh COMPLETION
set -euo pipefail
source "$1"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
touch passwords passwords.again

expect() { # WANTED WORD...: completes the last word
  local wanted=$1
  COMP_WORDS=(pwsealtool "${@:2}")
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  _pwsealtool
  local offered
  offered=$(printf '%s\n' "${COMPREPLY[@]}" | sort | xargs)
  [[ $offered == "$wanted" ]] || { echo "${COMP_WORDS[*]}: '$offered', not '$wanted'"; exit 1; }
}
expect "-d -e -k" ""
expect "-k" -k
expect "passwords passwords.again" -e p
expect "passwords passwords.again" -k key -d ""
expect "" -k ""
expect "" -k p
expect "" -e passwords -k -
expect "-d -e -k" -k -e ""
