#!/usr/bin/env bash
# mutants.sh [NUMBER...]: seeds the faults of mutants.txt, or those with the given
# numbers, one at a time in a copy of the tree, and runs the tests. Red when fewer
# than 95 of 100 are noticed, when an unnoticed one has no reason beside it, and when
# a fault changes nothing or does not compile.
#
# A fault is a line "FILE: SED-EXPRESSION", and behind "  # " the reason why the tests
# cannot notice it, if they cannot.
set -euo pipefail
cd "$(dirname "$0")/../.."
# Tests of agents share places in /tmp: root gives them a /tmp of their own. A tree that
# lies in /tmp stays in its place.
if [ "$(id -u)" = 0 ] && [ -z "${MUTANTS_TMP:-}" ]; then
  # shellcheck disable=SC2016 # for the inner shell
  MUTANTS_TMP=own exec unshare -m bash -euc '
    mount --bind "$PWD" /mnt && mount -t tmpfs none /tmp && mkdir -p "$PWD" && mount --move /mnt "$PWD"
    cd "$PWD" && exec tests/campaign/mutants.sh "$@"' mutants "$@"
fi
copy=$PWD/build-mutants
rm -rf "$copy"
mkdir "$copy"
grep -vE '^(#|$)' tests/campaign/mutants.txt >"$copy/faults"

build_and_test() { # prints what noticed, nothing for nothing
  cmake --build "$copy/build" >"$copy/build.log" 2>&1 || {
    echo 'does not compile'
    return
  }
  ctest --test-dir "$copy/build" -E '^install$' -LE campaign -j "$(nproc)" --stop-on-failure --timeout 180 >"$copy/test.log" 2>&1 ||
    sed -n 's/^\t *[0-9]* - \(.*\)/\1/p' "$copy/test.log" | head -1
}

seed() { # FILE EXPRESSION
  cp "$copy/$1" "$copy/original"
  sed -i "$2" "$copy/$1"
  if cmp -s "$copy/$1" "$copy/original"; then echo 'changes nothing'; else build_and_test; fi
  # The copy is newer than the changed file for the build to see it.
  cp "$copy/original" "$copy/$1"
}

git ls-files -z --cached --others --exclude-standard | xargs -0 cp --parents -t "$copy"
cmake -S "$copy" -B "$copy/build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 >/dev/null
[ -z "$(build_and_test)" ] || {
  echo "mutants: the tests fail without a fault; see $copy" >&2
  exit 1
}
total=0 missed=0 unexplained=0 bad=0
if [ $# = 0 ]; then mapfile -t numbers < <(seq "$(wc -l <"$copy/faults")"); else numbers=("$@"); fi
for number in "${numbers[@]}"; do
  [[ $(sed -n "${number}p" "$copy/faults") =~ ^([^:]+):\ (.*)$ ]]
  file=${BASH_REMATCH[1]} rest=${BASH_REMATCH[2]}
  result=$(seed "$file" "${rest%%  \# *}")
  printf '%3d  %-45s %s: %s\n' "$number" "${result:-NOT NOTICED}" "$file" "$rest"
  total=$((total + 1))
  case $result in
    '') missed=$((missed + 1)); [[ $rest == *'  # '* ]] || unexplained=$((unexplained + 1)) ;;
    'changes nothing' | 'does not compile') bad=$((bad + 1)) ;;
  esac
done
printf '%d faults, %d noticed, %d not noticed (%d of them without a reason), %d that are none\n' \
  "$total" $((total - missed - bad)) "$missed" "$unexplained" "$bad"
[ "$bad" = 0 ] && [ "$unexplained" = 0 ] && [ $(((total - missed) * 100)) -ge $((total * 95)) ]
