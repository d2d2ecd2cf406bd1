#!/usr/bin/env bash
# package_test.sh PACKAGES TRANSCRIPT: installs the packages in the folder PACKAGES on a
# bare Debian 12 of their own, with only them goes through the transcript, removes them
# and looks for what they left. Needs root.
set -euo pipefail
packages=$(realpath "$1") transcript=$(realpath "$2") tests=$(realpath "$(dirname "$0")/..")
work=$(mktemp -d)
root=$work/root
trap 'mountpoint -q "$root/proc" && umount "$root/proc"; rm -rf "$work"' EXIT
say() { printf -- '-- %s\n' "$*"; }
inside() { env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root TERM=dumb LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive chroot "$root" "$@" </dev/null; }
quietly() { "$@" >"$work/log" 2>&1 || { cat "$work/log" && false; }; }
# What there is but for apt's and dpkg's own records.
names() { inside find / -xdev \( -path /proc -o -path /tmp -o -path /var/cache -o -path /var/lib/apt -o -path /var/lib/dpkg -o -path /var/log \) -prune -o -print | sort; }

say 'a bare Debian 12, with a compiler, CMake and man'
mapfile -t sources < <(find /etc/apt/sources.list* -type f -size +0)
quietly mmdebstrap --variant=minbase --mode=root --skip=output/dev --include=cmake,g++,make,pkg-config,man-db bookworm "$root" "${sources[@]}"
for node in null zero random urandom tty; do cp -a "/dev/$node" "$root/dev/"; done
[ -e "$root/dev/fd" ] || ln -s /proc/self/fd "$root/dev/fd"
mount -t proc proc "$root/proc"
cp /etc/resolv.conf "$root/etc/"
find /etc/apt/apt.conf.d -name '99*' -exec cp {} "$root/etc/apt/apt.conf.d/" \;
mkdir "$root/tmp/packages"
cp "$packages"/*.deb "$tests/cli/replay.sh" "$transcript" "$root/tmp/packages"
names >"$work/before"

say 'install'
quietly inside bash -c 'apt-get update && apt-get install -y --no-install-recommends /tmp/packages/*_amd64.deb'
say "$(basename "$transcript")"
inside bash /tmp/packages/replay.sh "/tmp/packages/$(basename "$transcript")" /usr/bin ${3:+"$3"}
say 'purge'
quietly inside bash -c 'apt-get purge -y --auto-remove "*quarry-*"'
names >"$work/after"
diff "$work/before" "$work/after"
say 'nothing is left'
