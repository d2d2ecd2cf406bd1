#!/usr/bin/env bash
# readme_test.sh ROOT BUILD: README's C++ example compiles and does what README
# says of it.
set -euo pipefail
root=$1 build=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# shellcheck disable=SC2016 # backquotes, not a command
sed -n '/^```cpp$/,/^```$/p' "$root/README.md" | sed '/^```/d' >"$work/example.cc"
g++ -std=c++17 -Wall -Wextra -Werror -I "$root" "$work/example.cc" \
  -o "$work/example" -L "$build" -lquarry_config -Wl,-rpath,"$build"
cd "$root"
[ "$("$work/example")" = 'retries: 5' ]
