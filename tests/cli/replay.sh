#!/usr/bin/env bash
# replay.sh FILE BUILD [--print]: runs the commands of FILE, a page (*.md) or a transcript, in a
# folder of their own and compares what they do with what FILE says. --print prints FILE as it
# should be. Exit status 77: what FILE needs is not there.
#
#   $ COMMAND                     then all that it prints, and in a transcript "(exit STATUS)"
#                                 unless that is 0
#
# Only in a transcript:
#
#   COMMAND  => STATUS: OUTPUT    lines are separated by " | ", or are lines when that is too long,
#                                 and hints by " // "; messages are without the program's name and
#                                 without the lines that they quote
#   ? COMMAND                     fails when what FILE needs is not there
#   ## REMARK
#
# Only in a page:
#
#   <!-- needs PROGRAM... -->     the next block is printed as it is, and not run, when one of these
#                                 programs is not there
#
# A block ```cpp is the file example.cc, ```ini example.conf, ```sh example.sh, ```systemd
# example.service, ```vim example.vim, ```yaml example.yml. In a page, commands are in blocks
# ```console, ```text and ```diff. QUARRY_RUN runs the program, such as valgrind.
set -uo pipefail
file=$(realpath "$1") build=$(realpath "$2") mode=${3:-}
root=$(realpath "$(dirname "$0")/../..")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export PATH=$work/bin:$build:$PATH LD_LIBRARY_PATH=$build BUILD=$build ROOT=$root LC_ALL=C.UTF-8
export HOME=$work # where other programs find no settings
unset NO_COLOR

add_program() { # NAME COMMAND
  printf '#!/bin/sh\n%s\n' "$2" >"$work/bin/$1"
  chmod 755 "$work/bin/$1"
}
mkdir -m 755 "$work/here" "$work/bin"
[ -z "${QUARRY_RUN:-}" ] || add_program quarry-config "exec $QUARRY_RUN '$build/quarry-config' \"\$@\""
if [ -e "$build/CMakeCache.txt" ]; then # what is installed has these already
  add_program pkg-config "case \" \$* \" in *' quarry-settings '*) settings=-lquarry_settings ;; esac
echo '-I$build/include -L$build' \$settings -lquarry_config -lquarry_platform -lsodium -Wl,--as-needed -lboost_filesystem"
  cp -r "$root/examples" "$work/here"
fi
cd "$work/here" || exit 1
# A device that is always full; a bare /dev has none.
if [ -c /dev/full ]; then ln -s /dev/full ../full; else mknod ../full c 1 7; fi

in_one_line() { # STATUS
  { awk 1 ../out && sed -E '/^ +[0-9]* *\| /d; s/^quarry-config: //; s|^  hint: | // |' ../err; } |
    awk -v status="$1" 'BEGIN { printf "%s", status; between = ": " }
      { printf "%s%s", /^ \/\/ / ? "" : between, $0; between = " | " } END { print "" }'
}

commands=0
run_row() { # ROW
  local command=${1%%  => *} outcome
  bash -c "$command" >../out 2>../err </dev/null
  outcome=$(in_one_line $?)
  [ $((${#command} + ${#outcome})) -le 155 ] || outcome=${outcome// | /$'\n    | '}
  printf '%s  => %s\n' "$command" "$outcome"
  commands=$((commands + 1))
}
run_command() { # LINE
  local status
  printf '%s\n' "$1"
  bash -c "${1#"$ "}" >../out 2>&1 </dev/null
  status=$?
  awk 1 ../out
  [ $status = 0 ] || [ "$outside" = page ] || printf '(exit %s)\n' $status
  commands=$((commands + 1))
}

has_all() { # PROGRAM...
  local program
  for program; do command -v "$program" >../out || return; done
}

declare -A names=([cpp]=example.cc [ini]=example.conf [sh]=example.sh [systemd]=example.service
  [vim]=example.vim [yaml]=example.yml)
outside=transcript # any block
[[ $file != *.md ]] || outside=page
replay() {
  local line block=$outside missing="" programs
  while IFS= read -r line <&3; do
    case $block,$line in
      *,'```'?*)
        block=${line#'```'}
        printf '%s\n' "$line"
        [ -z "${names[$block]:-}" ] || : >"${names[$block]}"
        [ -z "$missing" ] || block=skipped
        missing=
        ;;
      page,'<!-- needs '*' -->')
        printf '%s\n' "$line"
        read -ra programs <<<"${line:11:-4}"
        has_all "${programs[@]}" || missing=1
        ;;
      *,'```')
        block=$outside
        printf '%s\n' "$line"
        ;;
      console,'$ '* | text,'$ '* | diff,'$ '* | transcript,'$ '*) run_command "$line" ;;
      transcript,'? '*)
        bash -c "${line#"? "}" >../out 2>&1 </dev/null || exit 77
        printf '%s\n' "$line"
        ;;
      transcript,'## '* | transcript,) printf '%s\n' "$line" ;;
      transcript,*'  => '*) run_row "$line" ;;
      console,* | text,* | diff,* | transcript,*) ;; # what was printed before
      *)
        printf '%s\n' "$line"
        [ -z "${names[$block]:-}" ] || printf '%s\n' "$line" >>"${names[$block]}"
        ;;
    esac
  done 3<"$file"
}
replay >../actual
if [ "$mode" = --print ]; then cat ../actual; else diff -u "$file" ../actual && [ $commands -gt 0 ]; fi
