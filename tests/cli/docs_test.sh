#!/usr/bin/env bash
# docs_test.sh ROOT BUILD PAGE [--print]: runs a page's examples in an empty folder
# beside examples/ and compares what they print with what the page says. In a block
# "console" a command stands behind "$ "; a block "cpp" is the file example.cc, a block
# "ini" the file example.conf, a block "sh" the file example.sh. With --print the page is printed as it should be.
set -uo pipefail
root=$(realpath "$1") build=$(realpath "$2") page=$(realpath "$3") mode=${4:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export PATH=$work/bin:$build:$PATH LC_ALL=C.UTF-8 LD_LIBRARY_PATH=$build
mkdir "$work/bin" "$work/here"
# What an installed library's pkg-config says, for the built one.
printf '#!/bin/sh\necho "-I%s -L%s -lquarry_config -lquarry_platform"\n' "$root" "$build" >"$work/bin/pkg-config"
chmod 755 "$work/bin/pkg-config"
cp -r "$root/examples" "$work/here"
cd "$work/here" || exit 1

declare -A files=([cpp]=example.cc [ini]=example.conf [sh]=example.sh)
commands=0
replay() {
  local line block=''
  while IFS= read -r line <&3; do
    case $block,$line in
      ,'```'?*)
        block=${line#'```'}
        printf '%s\n' "$line"
        [ -z "${files[$block]:-}" ] || : >"${files[$block]}"
        ;;
      *,'```')
        block=''
        printf '%s\n' "$line"
        ;;
      console,'$ '*)
        commands=$((commands + 1))
        printf '%s\n' "$line"
        bash -c "${line#"$ "}" 2>&1 </dev/null | awk 1
        ;;
      console,*) ;; # what it printed before
      *)
        printf '%s\n' "$line"
        [ -z "${files[${block:-none}]:-}" ] || printf '%s\n' "$line" >>"${files[$block]}"
        ;;
    esac
  done 3<"$page"
}
replay >../actual
if [ "$mode" = --print ]; then cat ../actual; else diff -u "$page" ../actual && [ $commands -gt 0 ]; fi
