#!/usr/bin/env bash
# faults.sh PROGRAM: makes every system call of an edit, and of the copying of an agent's tables, fail
# in turn, with several errors, and kills the program at each; simulates power cuts; fills the disk;
# edits from many processes at once. Requires the old file or the new one, complete, an exit status
# that says which, and no other file. Prints how often it did. Needs strace and root.
set -euo pipefail
program=$(realpath "$1")
export LC_ALL=C.UTF-8
# Starts use fixed places in /tmp: they get a /tmp of their own, unless it holds the program.
if [ "$(id -u)" = 0 ] && [[ $program != /tmp/* && -z ${FAULTS_TMP:-} ]]; then
  # shellcheck disable=SC2016 # for the inner shell
  FAULTS_TMP=own exec unshare -m bash -c 'mount -t tmpfs -o mode=1777 none /tmp && exec "$@"' faults bash "$(realpath "$0")" "$program"
fi
work=$(mktemp -d -p /var/tmp)
trap 'rm -rf "$work"' EXIT
cd "$work"

calls='getcwd|readlink|lstat|stat|newfstatat|fstat|fstatfs|openat|readlinkat|lseek|flock|read|write|unlinkat|fchown|flistxattr|fgetxattr|fsetxattr|fremovexattr|fchmod|fsync|close|renameat|renameat2|getrandom'
fail() {
  printf 'faults: %s\n' "$*" >&2
  [ ! -e err ] || cat err >&2
  exit 1
}
tally() { echo "$1" >>"$work/counts"; }

# Each run begins in a new folder "here" of its sweep, with or without the file.
prepare() {
  rm -rf here
  mkdir -m 700 here
  if [ -n "$old" ]; then
    cp "$old" "$target"
    setfattr -n user.a -v b "$target" 2>/dev/null || true # not every file system has these
  fi
}

# A key is another one each time.
view() { sed 's/^\(quarry-config-key:v1:\).\{43\}$/\1/' "$1"; }

state() {
  if [ ! -e "$target" ]; then
    [ -n "$old" ] && echo torn || echo old
  elif [ -n "$old" ] && cmp -s "$old" "$target"; then
    echo old
  elif [ "$(view "$target")" = "$(cat new)" ] && [ -s "$target" ]; then
    echo new
  else
    echo torn
  fi
}
leftovers() { find here -mindepth 1 ! -path "$target" | wc -l; }

# Runs the command with a fault in the N-th call of that name.
inject() { # NAME N FAULT
  prepare
  status=0
  { # the shell tells of every program that was killed
    strace -qq -o /dev/null -e trace="$1" -e inject="$1:$3:when=$2" "$program" "${command[@]}" >out 2>err || status=$?
  } 2>/dev/null
  now=$(state)
  what="${command[*]}: $3 at $1 number $2: the file is $now, exit $status"
  [ "$now" != torn ] || fail "$what"
}

# A call whose failure changes nothing: one that is repeated, the query of a size, and the closing of
# a file that was only read.
is_harmless() { # NAME ERROR LINE
  case $1 in
    read | write | flock | getrandom) [ "$2" = EINTR ] ;;
    fgetxattr) [[ $3 == *quarry-new* ]] ;; # to compare; it is set then
    newfstatat | fstat) [[ $3 != *quarry-new* ]] ;;
    close) [ "$2" = EINTR ] || [[ $3 != *quarry-new* ]] ;;
    *) false ;;
  esac
}

# The results that a run with a fault may have.
judge() { # NAME ERROR LINE
  case $now,$status in
    old,3) tally 'failed, old file' ;;
    new,3)
      grep -q 'is in place' err || fail "$what"
      tally 'failed, said that the new file is in place'
      ;;
    new,0)
      is_harmless "$1" "$2" "$3" || fail "$what"
      tally 'harmless, new file'
      ;;
    *) fail "$what" ;;
  esac
}

fail_each_call() { # NAME N LINE
  local error
  for error in EIO ENOSPC EINTR EACCES; do
    inject "$1" "$2" "error=$error"
    [ "$(leftovers)" = 0 ] || fail "$what, and left a file"
    judge "$1" "$error" "$3"
  done
}

end_at_each_call() { # NAME N
  inject "$1" "$2" signal=TERM
  [ "$status,$(leftovers)" = 143,0 ] || fail "$what, and left $(leftovers) files"
  tally "terminated, $now file"

  inject "$1" "$2" signal=KILL
  [ "$status" = 137 ] || fail "$what"
  tally "killed, $now file, $(leftovers) files left"
  if [ "$now" != new ]; then
    "$program" "${command[@]}" >out 2>err || fail "$what, and the next edit failed"
    [ "$(state)" = new ] || fail "$what, and the next edit was not made"
  fi
  [ "$(leftovers)" = 0 ] || fail "$what, and the next edit cleaned nothing"
}

# The new file is flushed before it is renamed, and its folder before the exit.
require_order() {
  local order
  order=$(grep -oE '^(write|fsync|renameat2?)\([0-9]+<[^>]*>' trace | sed "s|$PWD/||; s|([0-9]*|(|" | grep -v '^write(<err>' | uniq | tr '\n' ' ')
  [[ $order =~ ^write\(\<here/\.[a-z.]+\.quarry-new\>\ fsync\(\<here/\.[a-z.]+\.quarry-new\>\ renameat2?\(\<here\>\ fsync\(\<here\>\ $ ]] ||
    fail "${command[*]}: the order of writing is $order"
}

# When the power fails after any call, the disk has what was flushed of the new file, or all that was
# written, and the folder either name until it was flushed.
cut_power_after_each_call() {
  local line written=0 flushed=0 bytes place=old
  while IFS= read -r line; do
    case $line in
      write*quarry-new*) written=$((written + ${line##*= })) ;;
      fsync*quarry-new*) flushed=$written ;;
      rename*) place=either ;;
      fsync*) place=new ;;
      *) continue ;;
    esac
    for bytes in $flushed $written; do
      tally "power cut, $place file"
      [ $place = old ] || head -c "$bytes" "$target" | cmp -s - "$target" || fail "${command[*]}: a power cut tears the file"
    done
  done <trace
  [ $place = new ] || fail "${command[*]}: ends before all is on the disk"
}

# Lets each call of the command fail, from the first one on that names `begin`.
fail_all_calls() {
  local line name on=0 faulted=0
  local -A seen=()
  while IFS= read -r line; do
    name=${line%%(*}
    seen[$name]=$((${seen[$name]:-0} + 1))
    [[ $name != execve && $line == *$begin* ]] && on=1
    [[ $on = 0 || ! $name =~ ^($calls)$ || $line =~ ^write\([12]\< ]] && continue
    faulted=$((faulted + 1))
    tally 'calls'
    fail_each_call "$name" "${seen[$name]}" "$line"
    end_at_each_call "$name" "${seen[$name]}"
  done <trace
  [ "$faulted" -ge 15 ] || fail "${command[*]}: only $faulted calls were found to fail"
}

sweep() { # OLD TARGET COMMAND...
  local old=$1 target=$2 command=("${@:3}") status now what begin=here
  prepare
  strace -qq -y -o trace "$program" "${command[@]}" 2>err || fail "${command[*]} fails"
  view "$target" >new
  [ -s new ] || fail "${command[*]} writes nothing"
  require_order
  cut_power_after_each_call
  fail_all_calls
}

# The copying of both tables by an agent's start. They have fixed places.
sweep_tables() {
  local command=(agent --place-tables agent.conf) status now what begin=ledger
  # mkostemp calls getrandom a varying number of times, and does without.
  local calls="${calls%|getrandom}|access|getdents64|unlink|rename"
  prepare() {
    rm -f /tmp/.quarry-table-*
    echo old >/tmp/r.rt
    echo old >/tmp/c.rt
  }
  state() {
    case $(cat /tmp/r.rt),$(cat /tmp/c.rt) in
      old,old) echo old ;;
      r,c) echo new ;;
      r,old) echo between ;;
      *) echo torn ;;
    esac
  }
  leftovers() { find /tmp -maxdepth 1 -name '.quarry-table-*' | wc -l; }
  judge() {
    case $now,$status in
      *,[13]) tally "failed, $now tables" ;;
      new,0) tally 'harmless, new tables' ;;
      *) fail "$what" ;;
    esac
  }
  mkdir -m 700 keys ledger
  echo r >ledger/r.rt
  echo c >ledger/c.rt
  "$program" keygen keys 2>err
  printf '[CR]\nlogin=l\npassword=%s\n[SSL]\nkey_dir=keys\n[Ledger]\nurl=file://%s\n[Metabase]\nurl=m\n[Control]\naddress=c\n' \
    "$(echo p | "$program" seal keys)" "$PWD/ledger" >agent.conf
  prepare
  strace -qq -y -o trace "$program" "${command[@]}" >out 2>err || fail "${command[*]} fails"
  fail_all_calls
  sweep_trial
}

# A trial start, whatever happens to it, leaves both tables as they are, and its own folder only when
# it says so.
sweep_trial() {
  local command=(agent agent.conf) begin=mkdir
  local calls="$calls|mkdir|rmdir|fcntl"
  leftovers() {
    if grep -q 'cannot remove the folder' err; then echo 0; else find /tmp -maxdepth 1 -name 'quarry-config-*' | wc -l; fi
  }
  judge() {
    [[ $now,$status =~ ^old,[013]$ ]] || fail "$what"
    tally "trial, exit $status"
    sed -n 's/.*cannot remove the folder //p' err | xargs -r rm -r
  }
  end_at_each_call() {
    inject "$1" "$2" signal=TERM
    [ "$now,$status,$(leftovers)" = old,143,0 ] || fail "$what, and left $(leftovers) files"
    tally 'trial, terminated'
  }
  prepare
  strace -qq -y -o trace "$program" "${command[@]}" >out 2>err || fail "${command[*]} fails"
  fail_all_calls
}

printf '; c\n[s]\nx = 1\n' >text
printf '[s]\nx=2\n[t]\ny=3\n' >changes
[ "$(id -u)" = 0 ] || fail 'not run: only root can fill a disk of its own'
strace -qq -o /dev/null true || fail 'not run: nothing can be traced here'
sweeps=0
start_sweep() { # SWEEP...
  sweeps=$((sweeps + 1))
  mkdir "sweep-$sweeps"
  cp text changes "sweep-$sweeps"
  [ "$sweeps" -le "$(nproc)" ] || wait -n
  (cd "sweep-$sweeps" && "$@") &
}
for edit in 'set here/f s x 2' 'set here/f new x 2' 'unset here/f s x' 'unset here/f s' 'set here/f --from changes' 'dump changes -o here/f'; do
  # shellcheck disable=SC2086 # these are words
  start_sweep sweep text here/f $edit
done
start_sweep sweep '' here/f set --create here/f s x 2
start_sweep sweep '' here/f dump changes -o here/f
start_sweep sweep '' here/auth.key keygen here
start_sweep sweep_tables
while [ "$(jobs -p | wc -l)" -gt 0 ]; do wait -n; done

mkdir -m 700 here
# A full disk: there is room for the file once, not twice.
# shellcheck disable=SC2016 # for the inner shell
unshare -m sh -c '
  mount -t tmpfs -o size=32k none here && cp text here/f && head -c 20000 /dev/zero | tr "\0" "#" >>here/f
  cp here/f full; status=0; "$1" set here/f s x 2 2>err || status=$?
  cmp full here/f && [ "$status" = 3 ] && grep -q "No space left" err && [ "$(ls -A here)" = f ]' sh "$program" ||
  fail 'a full disk'
tally 'full disk, old file'

# Without /proc, files are opened by their names; with it, some links lead elsewhere than they say.
# shellcheck disable=SC2016 # for the inner shells
unshare -m sh -c '
  mount -t tmpfs none here && cp text here/f &&
  unshare -m sh -c "umount here && \"\$1\" set /proc/$$/root$PWD/here/f s x 2" sh "$1" && grep -q 2 here/f &&
  mount -t tmpfs none /proc && "$1" set here/f s x 3 && grep -q 3 here/f && mkfifo here/fifo &&
  ! timeout 9 "$1" set here/fifo s x 2 2>err && grep -q "not a regular file" err' sh "$program" ||
  fail 'an edit by way of /proc, or without it'
tally 'edits by way of /proc, and without it'

# Edits at once are all kept, and every reader finds a whole file.
cp text many
mapfile -t forty < <(yes many | head -40) # files for one process to read
edit_often() { # EDITOR ROUND
  for i in $(seq 50); do "$program" set many "s$1" "x$i" "$2.$i" || return 1; done
}
for round in $(seq 10); do
  editors=()
  for i in $(seq 8); do
    edit_often "$i" "$round" 2>err &
    editors+=($!)
  done
  while kill -0 "${editors[@]}" 2>/dev/null; do
    "$program" check "${forty[@]}" || fail 'a reader found a broken file'
    tally 'times 40 reads meanwhile'
  done
  wait "${editors[@]}" || fail 'an edit among many failed'
  [ "$("$program" dump many | grep -c "^x\([0-9]*\)=$round\.\1\$")" = 400 ] || fail 'an edit was lost'
  tally 'rounds of 400 edits by 8 processes, all kept'
done

sort counts | uniq -c
