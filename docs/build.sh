#!/usr/bin/env bash
# build.sh BUILD: makes the HTML reference of the public headers in BUILD/docs/html, and draws
# agent_start.dot. Fails when a public name is undocumented, or when the drawing is not the kept one.
# Needs doxygen, graphviz and fonts-dejavu-core.
set -euo pipefail
build=$(realpath "$1")
cd "$(dirname "$0")"
echo '== making the reference of the public headers'
rm -rf "$build/docs/html"
doxygen "$build/docs/Doxyfile"
echo '== drawing docs/agent_start.dot'
drawing=$build/docs/agent_start.svg
dot -Tsvg agent_start.dot | sed '/^<!-- Generated/,/-->$/d' >"$drawing"
cmp agent_start.svg "$drawing" || {
  echo "docs: the drawing differs from docs/agent_start.svg; keep the new one with: cp $drawing docs" >&2
  exit 1
}
echo "== the reference starts at $build/docs/html/index.html"
