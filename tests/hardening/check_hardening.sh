#!/bin/sh
# Checks how a program or a shared library was hardened. Prints a line for each complaint; READELF
# names the tool to read it with.
set -eu

if [ $# -ne 2 ] || { [ "$1" != program ] && [ "$1" != library ]; }; then
  echo "usage: check_hardening.sh program|library FILE" >&2
  exit 2
fi
kind=$1
file=$2
# shellcheck source=tests/abi/binary.sh
. "$(dirname "$0")/../abi/binary.sh"

echo "$header" | grep -q 'Type: *DYN' || complain "is loaded at a fixed address (no PIE)"

echo "$segments" | awk '$1 == "LOAD" && /RWE/ { found = 1 } END { exit found }' ||
  complain "has a segment that is writable and executable"

if [ "$kind" = program ]; then
  echo "$symbols" | grep -q __stack_chk_fail || complain "has no stack protector"
  echo "$symbols" | grep -Eq '__[a-z]+_chk(@|$)' || complain "has no fortified calls"
fi

[ "$complaints" -eq 0 ]
