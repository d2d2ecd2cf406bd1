#!/usr/bin/env bash
# words_test.sh ROOT BUILD: the man page and the completion of bash know every command
# and option that --help shows, and no other; completion, driven as bash drives it.
set -euo pipefail
root=$1
export PATH=$2:$PATH
fail() {
  echo "words: $*"
  exit 1
}
options_of() { # --help of COMMAND: its options but -h
  quarry-config "$@" --help | sed -n '/^Options:/,/^$/s/^ *\(-[a-zA-Z-]*\).*/\1/p' | sed '/^-h$/d' | sort
}
mapfile -t commands < <(quarry-config --help | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\) .*/\1/p')
[ ${#commands[@]} -ge 12 ] || fail "only ${#commands[@]} commands were found"

# The man page: what stands in bold behind the name of the command.
page() { sed -n "/^# COMMANDS/,/^# OPTIONS/s/^\*$1\*\(.*\)/\1/p" "$root/man/quarry-config.1.scd"; }
[ "$(sed -n '/^# COMMANDS/,/^# OPTIONS/s/^\*\([a-z]*\)\*.*/\1/p' "$root/man/quarry-config.1.scd" | sort -u)" = \
  "$(printf '%s\n' "${commands[@]}" | sort)" ] || fail 'the man page has other commands'

# Every rule of check stands in the page about it.
for rule in $(grep -oE '"[a-z]+-[a-z-]+"' "$root/tools/rules.h" | tr -d '"'); do
  grep -qF "| \`$rule\` |" "$root/docs/ci.md" || fail "no rule $rule in docs/ci.md"
done

# shellcheck source=/dev/null
. "$root/completions/quarry-config.bash"
compopt() { :; } # knows only completions that bash has begun
complete_words() { # WORD...: what may stand for the last one
  COMP_WORDS=(quarry-config "$@")
  COMP_CWORD=$#
  _quarry_config
  printf '%s\n' "${COMPREPLY[@]}" | sort
}
for command in "${commands[@]}"; do
  wanted=$(options_of "$command")
  [ "$(page "$command" | { grep -oE '\*-[a-z-]+\*' || true; } | tr -d '*' | sort -u)" = "$wanted" ] || fail "the man page has other options of $command"
  [ "$(complete_words "$command" - | sed '/^--help$/d')" = "$wanted" ] || fail "completion has other options of $command"
done
[ "$(complete_words '' | sed '/^-/d')" = "$(printf '%s\n' "${commands[@]}" | sort)" ] || fail 'completion has other commands'

expect() { # WANTED WORD...
  [ "$(complete_words "${@:2}")" = "$1" ] || fail "completion of: ${*:2}: $(complete_words "${@:2}")"
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
mkdir folder
printf '[Log]\nlevel=1\nLines=2\n[Volume a b]\nsize=1\n' >f.conf
expect f.conf get f.
expect 'f.conf
folder' check f.conf f
expect folder seal ''
expect Log set f.conf l
expect 'Volume\ a\ b' set f.conf 'vol'
expect 'Lines
level' get --default x f.conf LOG L
expect size unset f.conf 'Volume\ a\ b' ''
expect 'agent
client' check --as ''
expect sarif check --format s
# shellcheck disable=SC2016 # must not be run
expect '' get '$(touch harm)' l
[ ! -e harm ] || fail 'completion runs what was typed'
