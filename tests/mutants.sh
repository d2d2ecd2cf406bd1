#!/usr/bin/env bash
# mutants.sh [NUMBER...]: seeds the faults of mutants.txt, or those with the given
# numbers, one at a time in a copy of the tree, and runs the tests. Red when fewer
# than 95 of 100 are noticed, when an unnoticed one has no reason beside it, and when
# a fault changes nothing or does not compile.
#
# A fault is a line "FILE: SED-EXPRESSION", and behind "  # " the reason why the tests
# cannot notice it, if they cannot.
set -euo pipefail
cd "$(dirname "$0")/.."
folder=$PWD/build-mutants
rm -rf "$folder"
mkdir "$folder"
grep -vE '^(#|$)' tests/mutants.txt >"$folder/faults"

build_and_test() { # COPY: what noticed, empty for nothing
  cmake --build "$1/build" >"$1/build.log" 2>&1 || {
    echo 'does not compile'
    return
  }
  ctest --test-dir "$1/build" -LE packaging --stop-on-failure --timeout 60 >"$1/test.log" 2>&1 ||
    sed -n 's/^\t *[0-9]* - \(.*\)/\1/p' "$1/test.log" | head -1
}

seed() { # COPY NUMBER FILE EXPRESSION REASON
  local result
  cp "$1/$3" "$1/original"
  sed -i "$4" "$1/$3"
  if cmp -s "$1/$3" "$1/original"; then
    result='changes nothing'
  else
    result=$(build_and_test "$1")
  fi
  # The copy is newer than the changed file for the build to see it.
  cp "$1/original" "$1/$3"
  printf '%3d  %-45s %s: %s%s\n' "$2" "${result:-NOT NOTICED}" "$3" "$4" "${5:+  # $5}" | tee -a "$folder/results"
}

work() { # WORKER NUMBER...
  local copy=$folder/$1 number fault
  git ls-files -z --cached --others --exclude-standard | xargs -0 cp --parents -t "$copy"
  cmake -S "$copy" -B "$copy/build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 >/dev/null
  [ -z "$(build_and_test "$copy")" ] || {
    echo "mutants: the tests fail without a fault; see $copy" >&2
    return 1
  }
  for number in "${@:2}"; do
    fault=$(sed -n "${number}p" "$folder/faults")
    [[ $fault =~ ^([^:]+):\ (.*)$ ]]
    local file=${BASH_REMATCH[1]} rest=${BASH_REMATCH[2]}
    seed "$copy" "$number" "$file" "${rest%%  \# *}" "$([[ $rest != *'  # '* ]] || echo "${rest#*  \# }")"
  done
}

# Tests of agents share places in /tmp: each worker has a /tmp of its own. A tree that
# lies in /tmp stays in its place.
own_tmp() {
  mount --bind "$PWD" /mnt
  mount -t tmpfs none /tmp
  mkdir -p "$PWD"
  mount --move /mnt "$PWD"
  cd "$PWD"
}

workers=1
[ "$(id -u)" != 0 ] || workers=$(nproc)
if [ $# -gt 0 ]; then numbers=("$@"); else mapfile -t numbers < <(seq "$(wc -l <"$folder/faults")"); fi
export folder
export -f build_and_test seed work own_tmp
for ((worker = 0; worker < workers; ++worker)); do
  mine=()
  for ((i = worker; i < ${#numbers[@]}; i += workers)); do mine+=("${numbers[i]}"); done
  mkdir "$folder/$worker"
  if [ "$workers" -gt 1 ]; then
    # shellcheck disable=SC2016 # for the inner shell
    unshare -m bash -euo pipefail -c 'own_tmp && work "$@"' work "$worker" "${mine[@]}" &
  else
    work "$worker" "${mine[@]}" &
  fi
done
wait

count() { grep -cE "^ *[0-9]+  $1" "$folder/results" || true; }
total=$(wc -l <"$folder/results")
bad=$(count '(changes nothing|does not compile) ')
missed=$(count 'NOT NOTICED ')
unexplained=$((missed - $(count 'NOT NOTICED .*  # ')))
printf '%d faults, %d noticed, %d not noticed (%d of them without a reason), %d that are none\n' \
  "$total" $((total - missed - bad)) "$missed" "$unexplained" "$bad"
[ "$total" = ${#numbers[@]} ] && [ "$bad" = 0 ] && [ "$unexplained" = 0 ] && [ $(((total - missed) * 100)) -ge $((total * 95)) ]
