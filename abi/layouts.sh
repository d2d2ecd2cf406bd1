#!/usr/bin/env bash
# layouts.sh INCLUDE: prints the size of every public type and the offsets of its members, from the
# headers in the folder INCLUDE. abidiff does not compare types that are used only in templates, as
# OptionValue in a std::map. Needs clang.
set -euo pipefail
cd "$1"
mapfile -t headers < <(find . -name '*.h' | LC_ALL=C sort)
# Types begin a line; clang-format sees to that.
mapfile -t types < <(awk '
  /^namespace .* \{$/ { namespace = $2 "::" }
  /^}  \/\/ namespace/ { namespace = "" }
  /^(class|struct) .*\{$/ && before !~ /^template/ { print namespace ($2 == "QUARRY_EXPORT" ? $3 : $2) }
  { before = $0 }' "${headers[@]}")

# clang prints a layout where it is needed.
{
  printf '#include "%s"\n' "${headers[@]}"
  printf 'static_assert(sizeof(%s) > 0);\n' "${types[@]}"
} | clang++ -std=c++17 -fsyntax-only -Xclang -fdump-record-layouts -I. -x c++ - | awk -v types="${types[*]}" '
  BEGIN { for (i = split(types, list, " "); i > 0; --i) is_public[list[i]] = 1 }
  /^\*\*\* Dumping/ { is_first = 1; next }
  is_first {
    is_first = 0
    outer = $4; sub(/::[^:]*$/, "", outer)
    is_shown = $4 in is_public || outer in is_public
    if (is_shown) print $3, $4
    next
  }
  is_shown && /\|   [^ ]/ && !/sizeof/ { sub(/\|  /, ""); print }
  is_shown && /\[sizeof=/ { gsub(/.*sizeof=|,.*/, ""); printf "%10d bytes\n", $0 }'
