#!/usr/bin/env bash
# words_test.sh ROOT BUILD: the man page knows every command and option that --help
# shows, and no other; the page about the rules of check knows them.
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

for command in "${commands[@]}"; do
  [ "$(page "$command" | { grep -oE '\*-[a-z-]+\*' || true; } | tr -d '*' | sort -u)" = "$(options_of "$command")" ] ||
    fail "the man page has other options of $command"
done

rules=$(grep -ohE '"[a-z]+(-[a-z]+)*",' "$root/settings/rules.h" "$root/tools/check/program_rules.h" | tr -d '",' | sort)
# shellcheck disable=SC2016 # backticks of the page
[ "$rules" = "$(grep -oE '^. `[a-z-]+` . (error|warning)' "$root/docs/ci.md" | cut -d'`' -f2 | sort)" ] || fail 'docs/ci.md has other rules'
