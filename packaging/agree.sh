#!/usr/bin/env bash
# agree.sh: fails unless the places that say the version, and those that say the licence, agree.
set -euo pipefail
cd "$(dirname "$0")/.."
failed=0
agree() { # WHAT WANTED FOUND WHERE
  [ "$3" = "$2" ] && return
  printf 'agree: the %s in %s is "%s", not "%s"\n' "$1" "$4" "$3" "$2" >&2
  failed=1
}

version=$(sed -n 's/^project(quarry_config VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)
[ -n "$version" ] || failed=1
agree version "$version" "$(sed -n '1s/.*(\(.*\)).*/\1/p' debian/changelog)" debian/changelog
agree version "$version" "$(sed -n 's/^Version: *//p' packaging/quarry-config.spec)" packaging/quarry-config.spec
agree version "$version" "$(sed -n 's/^## \([0-9.]*\).*/\1/p' CHANGELOG.md | head -n 1)" CHANGELOG.md

# LICENSE is the place to change; packages must hold its text.
licence=$(sed 1,2d LICENSE)
agree licence "$licence" "$(sed -n '/^License:/,$s/^ //p' debian/copyright)" debian/copyright
agree copyright "$(sed -n 's/^Copyright \(.*\)\.$/\1/p' LICENSE)" "$(sed -n 's/^Copyright: //p' debian/copyright)" debian/copyright
exit $failed
