#!/usr/bin/env bash
# layers_test.sh ROOT: each folder of the product includes only its own headers and those of the
# folders in the line "Uses: ..." of its README.md, and that line names only folders of lower layers.
# Files directly in tools/ may include everything.
set -euo pipefail
cd "$1"
layers=(tools/commands tools/check tools/terminal settings config dmconfig platform/local platform) # top first
declare -A allowed=([tools]=" tools ${layers[*]} ")
failures=0 includes=0
fail() {
  echo "layers: $*"
  failures=$((failures + 1))
}

lower=" ${layers[*]} "
for layer in "${layers[@]}"; do
  lower=" ${lower#" $layer "}"
  [ -d "$layer" ] || continue
  allowed[$layer]=" $layer "
  uses=$(grep -hE '^Uses: [a-z/]+(, [a-z/]+)*$' "$layer/README.md") || fail "$layer/README.md has no line \"Uses: ...\""
  for used in $(tr -d , <<<"${uses#Uses: }"); do
    [ "$used" != nothing ] || continue
    [[ $lower == *" $used "* ]] || fail "$layer/README.md: $used is not below $layer"
    allowed[$layer]+="$used "
  done
done

while IFS=: read -r file line include; do
  includes=$((includes + 1))
  header=${include#*\"} header=${header%%\"*}
  beside=${file%/*}/$header # public headers include one another relatively
  [ ! -e "$beside" ] || header=$(realpath --relative-to=. "$beside")
  [[ ${allowed[${file%/*}]:-} == *" ${header%/*} "* ]] || fail "$file:$line: may not include $header"
done < <(grep -rsnE '^ *# *include *"' --include=*.cc --include=*.h tools settings config dmconfig platform)
[ $includes -gt 100 ] || fail "only $includes includes were found"
exit $((failures > 0))
