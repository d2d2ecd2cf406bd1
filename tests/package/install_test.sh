#!/usr/bin/env bash
# install_test.sh ROOT BUILD: programs elsewhere build against the installed tree, after
# it was moved, and run: by CMake and by pkg-config, with g++ and clang++, with our
# platform library and with one that the host system brings.
set -euo pipefail
root=$1 build=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
fail() {
  echo "install: $*"
  exit 1
}
run() { # COMMAND...
  "$@" >run.log 2>&1 || fail "$(cat run.log)"
}
expect() { # WANTED COMMAND...
  local printed
  printed=$("${@:2}" 2>&1) || fail "exit status $? of: ${*:2}: $printed"
  [ "$printed" = "$1" ] || fail "${*:2} printed: $printed"
}
consumer() { # FOLDER CXX CC PREFIX [CMAKE-ARGUMENT...]
  run cmake -S "$root/tests/package/consumer" -B "$1" -DCMAKE_CXX_COMPILER="$2" -DCMAKE_C_COMPILER="$3" \
    -DCMAKE_PREFIX_PATH="$4" -DHOST_HEADERS="$work/host-headers" "${@:5}"
  run cmake --build "$1"
}
component() { # NAME
  cmake --install "$build" --prefix "$work/parts" --component "$1" >/dev/null
}
compilers=('g++ gcc' 'clang++ clang')

# The host has headers with the names of ours, searched first; only its own code may include them.
mapfile -t headers < <(cd "$root" && find config dmconfig platform settings -name '*.h')
for header in "${headers[@]}"; do
  grep -qF "\"$header\"" "$root"/{tests/package/consumer/{main,settings},platform/local/cr_errno_exception}.cc && continue
  mkdir -p "host-headers/${header%/*}"
  echo "#error the host's $header was included" >"host-headers/$header"
done

run cmake --install "$build" --prefix "$work/first"
mkdir elsewhere
mv first elsewhere/moved
prefix=$work/elsewhere/moved
tool=$prefix/bin/quarry-config
component runtime
[ "$(cd parts && find . -type l | sort | xargs)" = './lib/libquarry_config.so.0 ./lib/libquarry_platform.so.0 ./lib/libquarry_settings.so.0' ] ||
  fail "the component runtime is $(find parts)"
component devel
[ ! -e parts/bin ] || fail 'the program is in a component for builds'
component tool
diff <(cd parts && find . | sort) <(cd "$prefix" && find . | sort) || fail 'the components are not everything'
"$tool" --version | grep -F "$prefix/lib/libquarry_platform.so.0" >/dev/null || fail 'the program takes other libraries'
[ "$(readelf -d "$prefix/lib/libquarry_settings.so" | grep NEEDED | grep -oE '\[.*\]' | xargs)" = \
  '[libquarry_config.so.0] [libstdc++.so.6] [libgcc_s.so.1] [libc.so.6]' ] || fail 'libquarry_settings.so needs more'
ldd "$prefix/lib/libquarry_config.so" | grep -F "$prefix/lib/libquarry_platform.so.0" >/dev/null ||
  fail 'the library does not find the other one beside it'
for page in man1/quarry-config.1 man5/quarry-config.5; do
  man --warnings -l "$prefix/share/man/$page" 2>warnings >shown
  { grep -q "^quarry-config(" shown && [ ! -s warnings ]; } || fail "$page: $(cat warnings)"
done

"$tool" keygen . 2>/dev/null
sealed=$(printf secret | "$tool" seal .)
sed "s|^key_dir = .*|key_dir = .|; s|^password = .*|password = $sealed|" \
  "$prefix/share/doc/quarry-config/examples/agent.conf" >agent.conf
started="$("$tool" get agent.conf CR login):secret asks $("$tool" get agent.conf Ledger url)
agent $("$tool" get agent.conf Agent numeric_option) of \"agent.conf\""
settings="$("$tool" get agent.conf Agent numeric_option) debug"
read -ra flags <<<"$(PKG_CONFIG_PATH=$prefix/lib/pkgconfig pkg-config --cflags --libs quarry-config)"
read -ra settings_flags <<<"$(PKG_CONFIG_PATH=$prefix/lib/pkgconfig pkg-config --cflags --libs quarry-settings)"
for compiler in "${compilers[@]}"; do
  read -r cxx cc <<<"$compiler"
  consumer "by-cmake-$cc" "$cxx" "$cc" "$prefix"
  expect "$started" "by-cmake-$cc/consumer" agent.conf
  expect "$settings" "by-cmake-$cc/settings" agent.conf
  "$cxx" -std=c++17 -Wall -Werror -Ihost-headers "$root/tests/package/consumer/main.cc" "${flags[@]}" -o "by-pkg-config-$cc"
  expect "$started" env LD_LIBRARY_PATH="$prefix/lib" "./by-pkg-config-$cc" agent.conf
  "$cxx" -std=c++17 -Wall -Werror -Ihost-headers "$root/tests/package/consumer/settings.cc" "${settings_flags[@]}" -o "settings-$cc"
  expect "$settings" env LD_LIBRARY_PATH="$prefix/lib" "./settings-$cc" agent.conf
done

# The example that people copy.
cp -r "$root/examples/volume_daemon" daemon
run cmake -S daemon -B daemon/build -DCMAKE_PREFIX_PATH="$prefix"
run cmake --build daemon/build
run ctest --test-dir daemon/build --no-tests=error

# As part of another build, which installs static libraries for others.
consumer subdirectory g++ gcc /nowhere -DQUARRY_SOURCES="$root" -DBUILD_SHARED_LIBS=OFF -DQUARRY_INSTALL=ON
expect "-I$work/host-headers -I$work/subdirectory/quarry/include" \
  sed -n 's/^CXX_INCLUDES = //p' subdirectory/CMakeFiles/consumer.dir/flags.make
run cmake --install subdirectory --prefix "$work/static"
consumer static clang++ clang "$work/static"
read -ra flags <<<"$(PKG_CONFIG_PATH=$work/static/lib/pkgconfig pkg-config --cflags --libs quarry-config)"
run clang++ -std=c++17 "$root/tests/package/consumer/main.cc" "${flags[@]}" -o static-by-pkg-config
read -ra flags <<<"$(PKG_CONFIG_PATH=$work/static/lib/pkgconfig pkg-config --cflags --libs quarry-settings)"
run clang++ -std=c++17 "$root/tests/package/consumer/settings.cc" "${flags[@]}" -o static-settings
for program in subdirectory/consumer static/consumer ./static-by-pkg-config; do
  expect "$started" "$program" agent.conf
done
for program in subdirectory/settings static/settings ./static-settings; do
  expect "$settings" "$program" agent.conf
  ! ldd "$program" | grep -F libquarry || fail "$program is not linked statically"
done

run_fails() { # MESSAGE COMMAND...
  ! "${@:2}" >run.log 2>&1 || fail "succeeds: ${*:2}"
  tr -s ' \n' ' ' <run.log | grep -qF "$1" || fail "$(cat run.log)"
}
run_fails 'not for Linux on aarch64' cmake -S "$root" -B aarch64 \
  -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR=aarch64

# A host's own platform library, and a distribution's own folders and flags.
run env CXXFLAGS='-O2 -Wp,-D_FORTIFY_SOURCE=3' cmake -S "$root" -B external -DQUARRY_PLATFORM=external \
  -DCMAKE_COMPILE_WARNING_AS_ERROR=ON -DCMAKE_INSTALL_PREFIX="$work/host" \
  -DCMAKE_INSTALL_LIBDIR="$work/host-lib/lib64" -DCMAKE_INSTALL_INCLUDEDIR="$work/host/inc"
run cmake --build external
run cmake --install external
[ -z "$(find host host-lib -name '*local_metab*' -o -name '*quarry_platform*' -o -name 'quarry-config')" ] ||
  fail 'ours is installed for a host, too'
printf '[c]\nn=me\np=host:secret\n[s]\nk=/keys\n[l]\nu=tables\n[m]\nu=x\n[x]\na=y\n[a]\no=7\n' >host.conf
for compiler in "${compilers[@]}"; do
  read -r cxx cc <<<"$compiler"
  consumer "host-$cc" "$cxx" "$cc" "$work/host-lib/lib64/cmake" \
    -DPLATFORM_SOURCES="$root/tests/package/consumer/host_platform.c;$root/platform/local/cr_errno_exception.cc"
  expect $'me:secret asks tables\nagent 7 of "host.conf"' "host-$cc/consumer" host.conf
  expect 'Unable to get the CR login from config file (status 4)' "host-$cc/consumer" agent.conf
done
read -ra flags <<<"$(PKG_CONFIG_PATH=$work/host-lib/lib64/pkgconfig pkg-config --cflags --libs quarry-config)"
run g++ -std=c++17 "$root/tests/package/consumer/main.cc" "${flags[@]}" -Lhost-gcc -lhost_platform -o host-by-pkg-config
expect $'me:secret asks tables\nagent 7 of "host.conf"' env LD_LIBRARY_PATH="$work/host-lib/lib64:host-gcc" ./host-by-pkg-config host.conf
