#!/usr/bin/env bash
# guard.sh BUILD [--renew]: counts the instructions of each operation in guard.txt with callgrind.
# Fails when one needs over 5 % more than that file says; with --renew writes the new counts there.
set -euo pipefail
build=$(realpath "$1") renew=${2:-} counted=0 failed=0
cd "$(dirname "$0")"

count_instructions() { # CALLGRIND-OPTION-OR-EMPTY COMMAND...
  local option=()
  [ -z "$1" ] || option=("$1")
  env -i PATH="$PATH" LC_ALL=C.UTF-8 valgrind --tool=callgrind "${option[@]}" \
    --callgrind-out-file=/dev/null "${@:2}" 2>&1 | sed -n 's/.*Collected : //p'
}

echo '== counting instructions'
new=
while read -r operation workload kept; do
  case $operation in
    # A whole process, most of whose instructions are the dynamic linker's.
    get) count=$(count_instructions '' "$build/quarry-config" get ../examples/agent.conf log level) ;;
    *) count=$(count_instructions --collect-atstart=no "$build/benchmarks/guard" "$operation" "$workload") ;;
  esac
  printf '%s %s %s (kept: %s)\n' "$operation" "$workload" "$count" "$kept"
  new+="$operation $workload $count"$'\n'
  counted=$((counted + 1))
  [ "${count:-0}" -gt 0 ] || failed=1
  [ "$((count * 100))" -le "$((kept * 105))" ] || failed=1
done <guard.txt
if [ "$renew" = --renew ]; then
  printf '%s' "$new" >guard.txt
  exit
fi
[ $failed = 0 ] && [ $counted -gt 0 ] && exit
echo 'guard: no instructions were counted, or more than benchmarks/guard.txt allows; keep the new counts with: ./dev bench --guard --renew' >&2
exit 1
