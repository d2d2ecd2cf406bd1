#!/usr/bin/env bash
# readme_test.sh ROOT BUILD: README's examples do what README says of them.
set -euo pipefail
root=$1 build=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$root"

# The block of README with that language.
block() { awk -v fence="\`\`\`$1" '$0 == fence { on = 1; next } /^```$/ { on = 0 } on' README.md; }

# The program compiles and runs.
block cpp >"$work/example.cc"
g++ -std=c++17 -Wall -Wextra -Werror -I . "$work/example.cc" \
  -o "$work/example" -L "$build" -lquarry_config -Wl,-rpath,"$build"
[ "$("$work/example")" = 'level: notice' ]

# The commands print what stands under them.
for language in text diff; do
  command=$(block $language | sed -n '1s/^\$ //p')
  [ "$(PATH=$build:$PATH bash -c "$command" 2>&1)" = "$(block $language | tail -n +2)" ]
done

# The core of the agent is the example's, but for its indentation.
[ "$(sed -n '/const auto metab/,/^  }$/s/^  //p' examples/agent_start.cc)" = "$(block c++)" ]
