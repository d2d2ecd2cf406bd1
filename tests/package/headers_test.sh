#!/usr/bin/env bash
# headers_test.sh ROOT HEADER...: each public header compiles alone, without
# warnings, in a user's C++17 and C++20.
set -euo pipefail
root=$1
shift
compile() {
  printf '#include "%s"\n' "$3" | "$1" -std="$2" -Wall -Wextra -Wconversion -Werror \
    -fsyntax-only -I "$root" -x c++ -
}
export -f compile
export root
for header; do
  for standard in c++17 c++20; do
    for compiler in g++ clang++; do
      printf '%s %s %s\n' "$compiler" "$standard" "${header#"$root"/}"
    done
  done
done | xargs -P "$(nproc)" -L 1 bash -c 'compile "$@"' compile
[ $# -ge 4 ] # the list itself was not lost
