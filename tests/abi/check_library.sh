#!/bin/sh
# Checks what a built liboltmgmt requires of the system that loads it. Prints a line for each
# complaint. READELF is the tool to read the library with.
set -eu

if [ $# -ne 4 ]; then
  echo "usage: check_library.sh LIBRARY SONAME IMPORTS C_LIBRARY" >&2
  exit 2
fi
file=$1
soname=$2
imports=$3
c_library=$4
# shellcheck source=tests/abi/binary.sh
. "$(dirname "$0")/binary.sh"

sections=$("$readelf" -SW "$file")

dynamic_values() {
  echo "$dynamic" | sed -n "s/.*($1).*\[\(.*\)\]$/\1/p"
}

has_dynamic_tag() {
  echo "$dynamic" | grep -q "($1)"
}

needed=$(dynamic_values NEEDED | paste -s -d ' ' -)
[ "$needed" = "$c_library" ] || complain "needs ${needed:-nothing}; expected $c_library alone"

actual=$(dynamic_values SONAME)
[ "$actual" = "$soname" ] || complain "its SONAME is \"$actual\"; expected \"$soname\""

undefined=$(echo "$symbols" |
  awk '$7 == "UND" && $8 != "" { sub(/@.*/, "", $8); print $8 }' | sort -u)
for name in $undefined; do
  grep -qx "$name" "$imports" || complain "imports $name, which $(basename "$imports") does not list"
done

writable=$(echo "$sections" | sed -n 's/^ *\[ *[0-9]*\] *//p' |
  awk '$7 ~ /W/ && $7 ~ /A/ && $1 !~ /^\.(dynamic|got)$/ { print $1 }')
for section in $writable; do
  complain "has writable data of its own in $section"
done

for tag in INIT INIT_ARRAY PREINIT_ARRAY FINI FINI_ARRAY; do
  ! has_dynamic_tag "$tag" || complain "runs code when it is loaded or unloaded ($tag)"
done

[ "$complaints" -eq 0 ]
