#!/usr/bin/env bash
# terminal_test.sh PROGRAM: colours, progress and the closing count are for terminals only.
# Exit status 77: there are no pseudo-terminals here.
set -euo pipefail
program=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
printf '[s]\nx=1 # y\n' >warn.conf
printf '[s]\nx=1\n' >good.conf
printf '[s]\n= 1\n[t\n' >bad.conf
script -qec true /dev/null >/dev/null 2>&1 </dev/null || exit 77

# What `check` shows on a terminal, with the given variables set.
on_terminal() {
  env -u NO_COLOR "$1" script -qec "'$program' check $2" /dev/null </dev/null | tr -d '\r' || true
}
expect() { # TEXT PATTERN
  grep -qF -- "$2" <<<"$1" || { printf 'no "%s" in:\n%s\n' "$2" "$1"; exit 1; }
}
escape=$(printf '\033')

plain=$(on_terminal TERM=dumb warn.conf)
expect "$plain" 'warn.conf:2:5: warning: this is part of the value'
expect "$plain" '1 file, no errors, 1 warning'
[ "${plain/"$escape"/}" = "$plain" ]
[ "$(TERM=xterm on_terminal NO_COLOR=1 warn.conf)" = "$plain" ]
[ "$(on_terminal TERM= warn.conf)" = "$plain" ]
[ "$(on_terminal TERM=dumb good.conf)" = '1 file, no errors' ]
expect "$(on_terminal TERM=dumb 'bad.conf warn.conf none')" '2 files, 2 errors, 1 not read, 1 warning'

coloured=$(on_terminal TERM=xterm warn.conf)
expect "$coloured" "${escape}[1;35mwarning: ${escape}[0mthis is part"
expect "$(on_terminal TERM=xterm bad.conf)" "${escape}[1;31moption name is empty${escape}[0m"

# Standard output alone elsewhere: coloured still, but no count.
aside=$(on_terminal TERM=xterm 'warn.conf >sum; cat sum')
expect "$aside" "${escape}[1;35mwarning"
[ "${aside/1 file/}" = "$aside" ]

# Long work says how far it has come, and takes the line away for what follows.
mkfifo slow
{ exec 6>slow && sleep 1.1 && printf '[s]\n' >&6; } & # the program waits at the pipe
expect "$(on_terminal TERM=xterm 'good.conf slow warn.conf')" "2 of 3 files checked${escape}[Kquarry-config: "
[[ $(on_terminal TERM=xterm 'good.conf warn.conf') != *checked* ]]

# seal asks twice, shows nothing of what is typed, and leaves the echo on.
mkdir -m 700 keys
"$program" keygen keys 2>/dev/null
# Types each line once the prompt for it is there.
seal_on_terminal() { # FIRST SECOND
  mkfifo typed
  exec 5<>typed
  rm -f session sealed
  script -qefc "'$program' seal keys >sealed; stty -a | grep -o ' -*echo '" session <typed >/dev/null 2>&1 &
  for prompt in 'Password to seal' 'Repeat the password'; do
    for _ in $(seq 100); do grep -qs -e "$prompt" -e refused session && break; sleep 0.1; done
    printf '%s\n' "$1" >&5
    shift
  done
  wait $! || true
  exec 5>&-
  rm typed
}
seal_on_terminal hunter2-secret hunter2-secret
[ "$(wc -c <sealed)" = 155 ]
! grep hunter session || exit 1
grep -q ' echo ' session
seal_on_terminal hunter2-secret hunter3-secret
expect "$(cat session)" 'the two passwords differ'
[ ! -s sealed ]
grep -q ' echo ' session

# edit asks what to do with an invalid text until it is answered.
edit_on_terminal() { # ANSWERS
  printf 'broken\n' >next
  printf '[s]\nx=2\n' >after
  printf '%b' "$1" | script -qec "EDITOR='f() { mv next \"\$1\"; [ ! -f after ] || mv after next; }; f' '$program' edit good.conf" /dev/null |
    tr -d '\r' || true
}
expect "$(edit_on_terminal 'x\n\ne\n')" '): (e)dit again or (d)iscard it? quarry-config: the edited text has errors (/tmp/'
[ "$(cat good.conf)" = "$(printf '[s]\nx=2\n')" ]
discarded=$(edit_on_terminal 'd\n')
expect "$discarded" 'the edited text has errors; nothing was saved'
[ "${discarded/kept in/}" = "$discarded" ]
[ "$(cat good.conf)" = "$(printf '[s]\nx=2\n')" ]
