#!/usr/bin/env bash
# demo.sh BUILD: shows the program at work on the example files: queries, errors, edits and whole
# agent starts. BUILD is the folder of the program; files are changed only in scratch folders.
set -euo pipefail
build=$(realpath "$1")
cd "$(dirname "$0")/.."
PATH=$build:$PATH

say() { printf '== %s\n' "$*"; }

# Prints a command as one would type it, then runs it. Some commands fail on purpose: their exit
# status is printed.
show() {
  printf '\n$'
  printf ' %q' "$@"
  echo
  "$@" || printf '(exit status %s)\n' "$?"
}

queries() {
  show quarry-config check examples/client.conf
  show quarry-config list examples/agent.conf
  show quarry-config list examples/agent.conf 'Volume data-0'
  show quarry-config get examples/agent.conf metabase URL
  show quarry-config get examples/agent.conf Log rotate --default weekly
  show quarry-config get examples/agent.conf Log lvl
  show quarry-config list --origin examples/client.conf
  show quarry-config list --json examples/client.conf
}

edits() (
  scratch=$(mktemp -d)
  trap 'rm -rf "$scratch"' EXIT
  say "edits that leave every other line alone, in the scratch folder $scratch"
  cp examples/agent.conf "$scratch/before.conf"
  cp examples/agent.conf "$scratch/agent.conf"
  show quarry-config set "$scratch/agent.conf" log LEVEL debug
  show quarry-config set "$scratch/agent.conf" 'Volume data-0' reserve 10%
  show quarry-config unset "$scratch/agent.conf" agent numeric_option --with-comment
  show quarry-config set "$scratch/agent.conf" Log level $'debug\nmore'
  show diff "$scratch/before.conf" "$scratch/agent.conf"
)

# Fills the scratch folder of an agent: a key, a sealed password, the ledger's folder, and a
# configuration file made from examples/agent.conf.
prepare_agent() { # SCRATCH
  local scratch=$1
  mkdir -m 700 "$scratch/keys" "$scratch/other-keys" "$scratch/ledger"
  printf 'routes of hall B\n' >"$scratch/ledger/r.rt"
  printf 'cells of hall B\n' >"$scratch/ledger/c.rt"
  show quarry-config keygen "$scratch/keys"
  printf "\n$ printf 'correct horse\\\\n' | quarry-config seal %s\n" "$scratch/keys"
  printf 'correct horse\n' | quarry-config seal "$scratch/keys" | tee "$scratch/sealed"
  sed -e "s|^key_dir = .*|key_dir = $scratch/keys|" \
    -e "s|^url = file:.*|url = file://$scratch/ledger|" \
    -e "s|^password = .*|password = $(cat "$scratch/sealed")|" \
    examples/agent.conf >"$scratch/agent.conf"
}

# Starts an agent with a copy of its file that a sed expression has changed.
show_failing_start() { # WHAT CHANGE SCRATCH
  say "a start that fails: $1"
  sed "$2" "$3/agent.conf" >"$3/changed.conf"
  show quarry-config agent "$3/changed.conf"
}

agent_starts() (
  scratch=$(mktemp -d)
  trap 'rm -rf "$scratch"' EXIT
  say "a whole agent start, in the scratch folder $scratch"
  prepare_agent "$scratch"
  show quarry-config check --as agent "$scratch/agent.conf"
  show quarry-config agent "$scratch/agent.conf"
  show "$build/examples/agent_start" "$scratch/agent.conf"
  show_failing_start 'a setting is absent' 's|^address|adress|' "$scratch"
  quarry-config keygen "$scratch/other-keys" 2>/dev/null
  show_failing_start 'another key' "s|$scratch/keys|$scratch/other-keys|" "$scratch"
  rm -r "$scratch/ledger"
  show_failing_start 'the ledger is gone' '' "$scratch"
  say 'the scratch folder is removed; /tmp/r.rt and /tmp/c.rt stay, where agents find their routing tables'
)

say "to type these commands yourself, first: PATH=\"$build:\$PATH\""
queries
say 'what is wrong with a file, and what to do'
show quarry-config check examples/broken.conf
edits
agent_starts
