#!/usr/bin/env bash
# hardening_test.sh PROGRAM LIBRARY...: what was built resists being taken over.
# Looks at the files, not at the command line that made them.
set -euo pipefail

# Control flow: the distribution's start files lack the mark that the whole file
# would need, so the functions are looked at below.
usual=(--nocfprotection)
check() { # FILE SWITCH...
  hardening-check "${usual[@]}" "${@:2}" "$1" || exit 1
  [ "$(objdump -d "$1" | grep -c endbr64)" -gt 50 ] || {
    echo "$1: functions are not marked as targets of jumps"
    exit 1
  }
  readelf -lW "$1" | grep -q 'GNU_STACK .* RW  *0x' || {
    echo "$1: the stack may be executed"
    exit 1
  }
}

check "$1"
for library in "${@:2}"; do
  case $library in
    # They call nothing whose size is known only while it runs.
    *platform* | *settings*) check "$library" --nopie --nofortify ;;
    *) check "$library" --nopie ;;
  esac
done
