#!/usr/bin/env bash
# secrets.sh PROGRAM AGENT: runs every command and every failing start with a
# password that occurs nowhere else, under strace, and looks for it in all that is
# written, in arguments and environments, and in what is left behind; counts its
# copies in the core of an agent. Needs strace and gdb.
set -euo pipefail
program=$(realpath "$1")
agent=$(realpath "$2")
export LC_ALL=C.UTF-8 EDITOR='sed -i s/level/LEVEL/'
secret=zq7-Marked-Password-0c4e-of-these-runs
stored_plain=zq8-Stored-Plainly-By-Mistake-9b1f
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
fail() {
  printf 'secrets: %s\n' "$*" >&2
  exit 1
}

runs=0
# Looks for the word in all that one run reads from nobody: its output, its files,
# what its processes write and are given.
run() { # WORD STATUS COMMAND... [< FILE]
  local word=$1 wanted=$2 status=0
  strace -qq -f -v -s 100000 -o trace -e trace=write,writev,pwrite64,sendto,execve "$program" "${@:3}" >out 2>err || status=$?
  [ "$status" = "$wanted" ] || fail "exit $status of: ${*:3}: $(cat err)"
  if grep -qF -e "$word" out err trace; then fail "the password shows in: ${*:3}"; fi
  if grep -rqF -e "$word" --exclude-dir=plain .; then fail "the password lies in a file after: ${*:3}"; fi
  runs=$((runs + 1))
}

mkdir -m 700 keys other wide ledger plain
echo r >ledger/r.rt
echo c >ledger/c.rt
run "$secret" 0 keygen keys
run "$secret" 3 keygen keys
run "$secret" 0 keygen other
cp keys/auth.key wide
chmod 640 wide/auth.key

# The password comes in by a pipe, which leaves nothing behind.
seal() { printf '%s%s' "$secret" "$1"; }
run "$secret" 0 seal keys < <(seal $'\n')
cp out sealed
run "$secret" 0 seal keys < <(seal '')
run "$secret" 1 seal keys < <(seal $'\nand another line\n')
run "$secret" 1 seal keys < <(seal "$(printf '%300s' '')")
run "$secret" 3 seal missing < <(seal '')
run "$secret" 1 seal wide < <(seal '')

printf '%s\n' '[Agent]' 'numeric_option = 7' '[Ledger]' "url = file://$work/ledger" '[Metabase]' 'url = m' \
  '[Control]' 'address = c' '[CR]' 'login = me' "password = $(cat sealed)" '[SSL]' "key_dir = $work/keys" \
  '[Log]' 'level = notice' '[lynx]' 'ingest_mode = on' >agent.conf
for command in check 'check --json' 'check --format=sarif' 'check --format=github' 'check --as agent' 'check --as client' list 'list --json' 'list --origin' \
  dump client agent 'agent --json' 'agent --place-tables'; do
  read -ra words <<<"$command"
  run "$secret" 0 "${words[@]}" agent.conf
done
run "$secret" 0 list agent.conf CR
run "$secret" 0 get agent.conf CR password
cp agent.conf changed.conf
run "$secret" 0 set changed.conf Log level debug
run "$secret" 0 set changed.conf CR login --dry-run you
run "$secret" 1 diff agent.conf changed.conf
run "$secret" 0 edit changed.conf
run "$secret" 0 unset changed.conf CR password
run "$secret" 0 set changed.conf CR password "$(cat sealed)"
run "$secret" 0 seal --into changed.conf --report < <(seal '')
run "$secret" 0 seal --into changed.conf other --report --as agent < <(seal '')
run "$secret" 3 seal --into changed.conf missing --report < <(seal '')
run "$secret" 0 seal --into changed.conf keys --dry-run < <(seal '')
run "$secret" 0 rename changed.conf CR PW --report
run "$secret" 0 dump agent.conf -o copy.conf

# Starts that fail, in each way.
starts=0
fail_start() { # SED-EXPRESSION
  sed "$1" agent.conf >broken.conf
  if cmp -s agent.conf broken.conf; then fail "nothing was changed by $1"; fi
  run "$secret" 1 agent broken.conf
  run "$secret" "${2:-1}" check --as agent broken.conf
  starts=$((starts + 1))
}
for setting in 'url = file' 'url = m' address login password key_dir; do fail_start "s|^$setting|x&|"; done
for keys in other wide missing; do fail_start "s|^key_dir.*|key_dir = $work/$keys|"; done
fail_start 's|^password.*|&A|'
fail_start 's|^password = ...|&x|'
fail_start 's|^\[Agent\]|&]|'
fail_start "s|^url = file.*|url = https://ledger|" 0
mv ledger/c.rt c.rt
run "$secret" 1 agent agent.conf
rm -r ledger
run "$secret" 1 agent agent.conf

# One stored in plain text by mistake shows only where its text is asked for.
sed "s|^password = .*|password = $stored_plain|" agent.conf >plain/agent.conf
sed 's|^\[Log\]|&]|' plain/agent.conf >plain/broken.conf
sed "s|^password = .*|password $stored_plain|" agent.conf >plain/no-equals.conf
for file in agent broken no-equals; do
  run "$stored_plain" 1 check --as agent plain/$file.conf
  run "$stored_plain" 1 check --as agent --no-key plain/$file.conf
  for format in json sarif github; do run "$stored_plain" 1 check --format=$format --as agent plain/$file.conf; done
  run "$stored_plain" 1 agent plain/$file.conf
done
for file in broken no-equals; do
  for command in list dump client; do run "$stored_plain" 3 $command plain/$file.conf; done
  run "$stored_plain" 3 set plain/$file.conf Log level debug
done
run "$stored_plain" 0 list --origin plain/agent.conf
run "$stored_plain" 0 set --dry-run plain/agent.conf CR login you
run "$stored_plain" 0 unset --dry-run plain/agent.conf CR password
run "$stored_plain" 0 rename --dry-run plain/agent.conf CR password x
run "$stored_plain" 1 rename --as agent plain/agent.conf CR password x
run "$stored_plain" 0 unset --dry-run --report plain/agent.conf CR
run "$stored_plain" 0 seal --into plain/agent.conf keys --dry-run --report < <(seal '')
run "$stored_plain" 0 set --as agent plain/agent.conf CR login '' --dry-run --report
run "$stored_plain" 1 unset --as agent plain/agent.conf SSL
run "$stored_plain" 1 diff plain/agent.conf agent.conf
run "$stored_plain" 0 survey CR login plain/agent.conf
run "$stored_plain" 1 diff --base plain/agent.conf agent.conf
run "$stored_plain" 1 diff --json plain/agent.conf agent.conf
run "$stored_plain" 1 get plain/agent.conf CR pasword
run "$stored_plain" 1 list plain/agent.conf CRR
# The search finds what is there.
if (run "$stored_plain" 0 get plain/agent.conf CR password) 2>err2; then fail 'a password that shows is not found'; fi
grep -q 'the password shows in' err2 || fail "$(cat err2)"
[ $runs -ge 60 ] || fail "only $runs runs were made"

# The agent holds it once.
mkdir ledger
touch ledger/r.rt ledger/c.rt
gdb -q -batch -ex 'set breakpoint pending on' -ex 'break storage::config::AgentCfg::~AgentCfg' -ex run \
  -ex 'generate-core-file core' -ex kill --args "$agent" agent.conf >gdb.out 2>&1 || true
[ -s core ] || fail "no core was made: $(tail -3 gdb.out)"
copies=$({ grep -oaF "$secret" core || true; } | wc -l)
[ "$copies" = 1 ] || fail "a core of the agent holds the password $copies times"
echo "$runs runs, $starts ways to fail a start: the password showed nowhere; a core of a running agent holds it once"
