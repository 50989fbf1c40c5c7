#!/usr/bin/env bash
# The examples of the manual page, run as they are written there: seal, unseal, and recover the text and the access
# key with openssl and the usual text tools alone.
# usage: openssl_alone_test.sh MANUAL_PAGE INSTALLATION
set -euo pipefail
page=$1 installation=$2
KESTRIONDIR=$(mktemp -d)
export KESTRIONDIR
export ASAN_OPTIONS=detect_leaks=0 # the command leaves its blocks to the system by design
trap 'rm -rf "$KESTRIONDIR"' EXIT
mkdir "$KESTRIONDIR/etc"
ln -s "$installation"/{bin,lib,msg,gls} "$KESTRIONDIR/"
PATH=$KESTRIONDIR/bin:$PATH
cd "$KESTRIONDIR"

# The lines of one example, with the marks of the formatter taken out.
example() { sed -n "/^\.\\\\\" begin $1\$/,/^\.\\\\\" end $1\$/{/^\./d;s/\\\\-/-/g;s/\\\\(aq/'/g;s/\\\\e/\\\\/g;p}" "$page"; }
run() { example "$1" >"$1.sh"; [[ -s $1.sh ]]; sh -eu "$1.sh"; }
fail() { echo "$*" >&2; exit 1; }

printf 'stores\tdbadmin rosebud primary\nsales ops xanadu live\nno line' >passwords
run seal
[[ $(stat -c %a etc/passwd_file) == 600 ]] || fail "the sealed file's mode is $(stat -c %a etc/passwd_file)"
run unseal
cmp passwords passwords.again

# Keys shorter and longer than the 12 characters that count, one and two blocks long.
for key in '' k opensesame thirteenchars exactly_16_chars twenty_four_characters_x; do
  pwsealtool -k "$key" -e passwords
  [[ $(run recover) == "access key: $key" ]] || fail "another access key than '$key' was recovered"
  cmp passwords recovered
done
: >passwords
pwsealtool -e passwords
run recover >recovered.words
cmp passwords recovered
