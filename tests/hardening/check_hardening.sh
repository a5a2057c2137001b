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
readelf=${READELF:-readelf}

header=$("$readelf" -hW "$file")
dynamic=$("$readelf" -dW "$file")
segments=$("$readelf" -lW "$file")
symbols=$("$readelf" -W --dyn-syms "$file")

complaints=0
complain() {
  echo "$(basename "$file"): $*"
  complaints=$((complaints + 1))
}

echo "$header" | grep -q 'Type: *DYN' || complain "is loaded at a fixed address (no PIE)"

echo "$segments" | grep -q GNU_RELRO || complain "stays writable after relocation (no RELRO)"
echo "$dynamic" | grep -Eq '\(FLAGS\).*BIND_NOW|\(BIND_NOW\)' ||
  complain "is bound lazily (no BIND_NOW)"
! echo "$dynamic" | grep -q TEXTREL || complain "has relocations in its code (TEXTREL)"

stack=$(echo "$segments" | awk '$1 == "GNU_STACK" { print $7 $8 }')
case $stack in
  "" | *E*) complain "asks for an executable stack" ;;
esac
echo "$segments" | awk '$1 == "LOAD" && /RWE/ { found = 1 } END { exit found }' ||
  complain "has a segment that is writable and executable"

if [ "$kind" = program ]; then
  echo "$symbols" | grep -q __stack_chk_fail || complain "has no stack protector"
  echo "$symbols" | grep -Eq '__[a-z]+_chk(@|$)' || complain "has no fortified calls"
fi

[ "$complaints" -eq 0 ]
