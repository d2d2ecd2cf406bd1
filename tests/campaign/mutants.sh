#!/usr/bin/env bash
# mutants.sh [NUMBER...]: seeds the faults of mutants.txt, or those with the given numbers, one at a
# time in a copy of the tree, and runs the tests. Fails when they notice fewer than 95 of 100, when
# one that they do not notice has no reason, and when one cannot be seeded or does not compile.
# mutants.sh --check: only checks that each can be seeded.
set -euo pipefail
cd "$(dirname "$0")/../.."

# Seeds the faults on standard input in the tree, or with --check only checks that each can be.
seed() { # TREE [--check]
  perl -we '
    my ($tree, $check) = @ARGV;
    sub seed { # returns what to do when it cannot
      my ($file, $old, $new) = /^(\S+): (\S.*?) =>(?: (\S.*?))?(?:  # .*)?$/ or return "write FILE: OLD => NEW";
      open my $in, "<", "$tree/$file" or return "there is no $file; name the file that has the code now";
      my $text = join "", <$in>;
      my $pattern = join "\\s*", map quotemeta, $old =~ /\w+|[^\w\s]/g; # any white space between
      my $count = $text =~ s/$pattern/$new \/\/ ""/ge;
      return sprintf "%s has OLD %d times; make it a text that is there once", $file, $count if $count != 1;
      return "" if $check;
      open my $out, ">", "$tree/$file" or die "$file: $!";
      print $out $text;
      return "";
    }
    my $failed = 0;
    while (<STDIN>) {
      my $line = $.;
      my $remedy = /^(#|$)/ ? "" : seed;
      $failed = warn "tests/campaign/mutants.txt:$line: $remedy\n" if $remedy;
    }
    exit $failed' "$@"
}
seed . --check <tests/campaign/mutants.txt
[ "${1:-}" != --check ] || exit 0

# Tests of agents share places in /tmp: root gives them a /tmp of their own. A tree in /tmp stays
# in its place.
if [ "$(id -u)" = 0 ] && [ -z "${MUTANTS_TMP:-}" ]; then
  # shellcheck disable=SC2016 # for the inner shell
  MUTANTS_TMP=own exec unshare -m bash -euc '
    mount --bind "$PWD" /mnt && mount -t tmpfs none /tmp && mkdir -p "$PWD" && mount --move /mnt "$PWD"
    cd "$PWD" && exec tests/campaign/mutants.sh "$@"' mutants "$@"
fi
copy=$PWD/build-mutants
rm -rf "$copy" && mkdir "$copy"
git ls-files -z --cached --others --exclude-standard | xargs -0 cp --parents -t "$copy"
mapfile -t -O 1 faults < <(grep -vE '^(#|$)' "$copy/tests/campaign/mutants.txt")

build_and_test() { # prints what noticed, nothing for nothing; the quick tests first
  cmake --build "$copy/build" >"$copy/build.log" 2>&1 || { echo 'does not compile'; return; }
  local label
  for label in unit cli package; do
    ctest --test-dir "$copy/build" -E '^install$' -L "$label" -j "$(nproc)" --stop-on-failure --timeout 180 >"$copy/test.log" 2>&1 && continue
    sed -n 's/^\t *[0-9]* - \(.*\)/\1/p' "$copy/test.log" | head -1
    return
  done
}

cmake -S "$copy" -B "$copy/build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 >/dev/null
[ -z "$(build_and_test)" ] || {
  echo "mutants: the tests fail without a fault; see $copy" >&2
  exit 1
}
total=0 missed=0 unexplained=0 bad=0
[ $# -gt 0 ] || set -- "${!faults[@]}"
for number; do
  fault=${faults[number]} file=${fault%%: *}
  cp "$copy/$file" "$copy/original"
  seed "$copy" <<<"$fault"
  result=$(build_and_test)
  cp "$copy/original" "$copy/$file" # newer than the mutant, for the build to see it
  printf '%3d  %-45s %s\n' "$number" "${result:-NOT NOTICED}" "$fault"
  total=$((total + 1))
  case $result in
    '') missed=$((missed + 1)); [[ $fault == *'  # '* ]] || unexplained=$((unexplained + 1)) ;;
    'does not compile') bad=$((bad + 1)) ;;
  esac
done
printf '%d faults, %d noticed, %d not noticed (%d of them without a reason), %d that are none\n' \
  "$total" $((total - missed - bad)) "$missed" "$unexplained" "$bad"
[ "$bad" = 0 ] && [ "$unexplained" = 0 ] && [ $(((total - missed) * 100)) -ge $((total * 95)) ]
