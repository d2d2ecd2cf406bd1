#!/usr/bin/env bash
# headers_test.sh ROOT HEADER...: each public header compiles alone, without
# warnings, in a user's C++17 and C++20.
set -euo pipefail
root=$1
shift
compilers=(g++)
command -v clang++ >/dev/null && compilers+=(clang++)
for header; do
  for standard in c++17 c++20; do
    for compiler in "${compilers[@]}"; do
      printf '#include "%s"\n' "${header#"$root"/}" |
        "$compiler" -std="$standard" -Wall -Wextra -Wconversion -Werror \
          -fsyntax-only -I "$root" -x c++ -
    done
  done
done
[ $# -ge 4 ] # the list itself was not lost
