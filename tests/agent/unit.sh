#!/bin/sh
# The unit for systemd is right, and its sandbox tight: unit.sh UNIT PROGRAM
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
sed "s#/usr/bin/oltsnmp#$2#" "$1" >"$folder/oltsnmp.service"
complaints=$(systemd-analyze verify "$folder/oltsnmp.service" 2>&1)
[ -z "$complaints" ] || {
  echo "$complaints" >&2
  exit 1
}
# The exposure, times 10: 5 is what a service without any privilege has.
systemd-analyze security --offline=true --threshold=10 "$folder/oltsnmp.service" | tail -1
