#!/usr/bin/env bash
# scaling.sh PROGRAM: counts the instructions of checking, dumping and editing texts of 10,000,
# 20,000 and 40,000 lines, of every kind. Fails when twice the text takes more than 2.3 times the
# instructions. Needs valgrind.
set -euo pipefail
program=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

# Prints the line N times, with its number, of a fixed width, for "%".
lines() { # LINE N
  awk -v line="$1" -v n="$2" 'BEGIN { for (i = 1; i <= n; ++i) { text = line; gsub(/%/, sprintf("%07d", i), text); print text } }'
}

kinds=(line name sections section options backwards option comments commented blanks warnings errors)
text() { # KIND N
  case $1 in
    line) echo '[s]' && printf 'x=%*s.\n' "$(($2 * 20))" '' ;;
    name) echo '[s]' && lines '%' "$(($2 * 3))" | tr -d '\n' && echo '=1' ;;
    sections) lines '[s%]' "$2" ;;
    section) lines '[s]' "$2" ;;
    options) echo '[s]' && lines 'x%=1' "$2" ;;
    backwards) echo '[s]' && lines 'x%=1' "$2" | tac ;;
    option) echo '[s]' && lines 'x=%' "$2" ;;
    comments) lines '# %' "$2" && echo '[s]' ;;
    commented) echo '[s]' && lines '# c
x%=1' "$2" ;;
    blanks) echo '[s]' && lines '' "$2" ;;
    warnings) echo '[s]' && lines 'x% = 1 # c' "$2" ;;
    errors) echo '[s]' && lines 'word' "$2" ;;
  esac
}

count() { # COMMAND...
  valgrind --tool=callgrind --callgrind-out-file=/dev/null "$program" "$@" 2>&1 >/dev/null | sed -n 's/.*Collected : //p'
}

# The instructions of an operation on such a file, less those on a file of one line.
cost() { # OPERATION KIND N
  local file="$1-$2-$3" operation=("$1" "$1-$2-$3") all start
  [ "$1" != set ] || operation+=(s new 1)
  text "$2" "$3" >"$file"
  all=$(count "${operation[@]}")
  text "$2" 1 >"$file"
  start=$(count "${operation[@]}")
  echo $((all - start))
}

measure() { # OPERATION KIND
  local n costs=() first second
  for n in 10000 20000 40000; do costs+=("$(cost "$1" "$2" $n)"); done
  first=$((costs[1] * 100 / costs[0])) second=$((costs[2] * 100 / costs[1]))
  printf '%-6s %-10s %11d %11d %11d   x%d.%02d x%d.%02d\n' "$1" "$2" "${costs[@]}" \
    $((first / 100)) $((first % 100)) $((second / 100)) $((second % 100)) >"result-$1-$2"
  if [ "${costs[0]}" -lt 10000 ] || [ $first -gt 230 ] || [ $second -gt 230 ]; then touch failed; fi
}

measurements=0
for operation in check dump set; do
  for kind in "${kinds[@]}"; do
    [ "$kind" != errors ] || [ $operation = check ] || continue
    measurements=$((measurements + 1))
    [ $measurements -le "$(nproc)" ] || wait -n
    measure $operation "$kind" &
  done
done
wait
cat result-*
if [ -e failed ] || [ "$(cat result-* | wc -l)" != $measurements ]; then
  echo 'scaling: not all were measured, or twice the text took more than 2.3 times the instructions' >&2
  exit 1
fi
