#!/usr/bin/env bash
# transcript_test.sh TRANSCRIPT BUILD [--print]: runs the commands of a transcript
# in an empty folder and compares all that they do with it. In a transcript "$ "
# stands before a command, "2> " before a line of standard error, "(exit N)" is an
# exit status other than 0, "## " a remark; other lines are standard output. QUARRY_RUN
# is what runs the program, such as valgrind.
set -uo pipefail
transcript=$(realpath "$1") build=$(realpath "$2") mode=${3:-}
export PATH=$build:$PATH BUILD=$build LC_ALL=C.UTF-8
unset NO_COLOR
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -m 755 "$work/here" "$work/bin"
if [ -n "${QUARRY_RUN:-}" ]; then
  printf '#!/bin/sh\nexec %s "%s/quarry-config" "$@"\n' "$QUARRY_RUN" "$build" >"$work/bin/quarry-config"
  chmod 755 "$work/bin/quarry-config"
  PATH=$work/bin:$PATH
fi
cd "$work/here" || exit 1
# A device that is always full; a bare /dev has none.
if [ -c /dev/full ]; then ln -s /dev/full ../full; else mknod ../full c 1 7; fi

replay() {
  local line status
  while IFS= read -r line <&3; do
    case $line in
      '$ '*)
        printf '%s\n' "$line"
        bash -c "${line#"$ "}" >../out 2>../err </dev/null
        status=$?
        awk 1 ../out
        awk '{ print "2> " $0 }' ../err
        [ "$status" -eq 0 ] || printf '(exit %s)\n' "$status"
        ;;
      '## '* | '') printf '%s\n' "$line" ;;
    esac
  done 3<"$transcript"
}

replay >../actual
if [ "$mode" = --print ]; then cat ../actual; else diff -u "$transcript" ../actual; fi
