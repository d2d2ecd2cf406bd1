#!/usr/bin/env bash
# try.sh PROGRAM: shows the daemon at work. PROGRAM is the built volume_daemon.
set -euo pipefail
program=$(realpath "$1")
sample=$(realpath "$(dirname "$0")/volumes.conf")
scratch=$(mktemp -d)
cd "$scratch"
cp "$sample" volumes.conf
exec 3< <(exec "$program" volumes.conf 2>&1)
daemon=$!
trap 'kill -KILL $daemon 2>/dev/null || true; rm -r "$scratch"' EXIT

# Shows the log, without its times, up to a line with this text.
log_up_to() { # TEXT
  local line
  while read -r -t 60 line <&3; do
    [[ $line =~ ^[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z\ (.*) ]]
    printf '  %s\n' "${BASH_REMATCH[1]}"
    [[ $line != *"$1"* ]] || return 0
  done
  return 1
}

echo '== start'
log_up_to started
echo '== SIGHUP: another volume is checked; one setting is misspelled'
sed -i 's|^skip = .*|skip =|; s|^interval|intervall|; s|^path = /srv.*|path = /nowhere|' volumes.conf
kill -HUP $daemon
log_up_to 'volume data-1'
echo '== SIGHUP: lines that are not valid'
cp volumes.conf good.conf
printf '[Volume data-2\npath /srv/data-2\n' >>volumes.conf
kill -HUP $daemon
log_up_to stays
echo '== SIGHUP: values that are not valid'
sed 's|^threads = .*|threads = many|; s|^reserve = 20 GiB|reserve = 20 gigs|' good.conf >volumes.conf
kill -HUP $daemon
log_up_to stays
echo '== SIGUSR1: drain'
cp good.conf volumes.conf
kill -USR1 $daemon
log_up_to 'volume data-1'
diff good.conf volumes.conf || true
echo '== SIGTERM'
kill -TERM $daemon
log_up_to ended
wait $daemon
echo "exit status $?"
