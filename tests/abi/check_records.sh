#!/bin/sh
# Checks that every record of a header and each of its fields has an assertion in another file.
# Prints a line for each one that has none.
# usage: check_records.sh HEADER ASSERTIONS
set -eu

declared=$(awk '
  /^typedef struct [a-z0-9_]+ \{/ { record = $3; print record; next }
  /^\}/ { record = "" }
  record != "" && /;/ {
    sub(/(\[.*)?;.*/, "")
    sub(/.*[ *]/, "")
    print record "." $0
  }' "$1")
asserted=$(sed -n \
  -e 's/^ASSERT_RECORD(\([a-z0-9_]*\), .*/\1/p' \
  -e 's/^ASSERT_FIELD(\([a-z0-9_]*\), \([a-z0-9_]*\), .*/\1.\2/p' "$2")

missing=0
for name in $declared; do
  echo "$asserted" | grep -qxF "$name" || {
    echo "$(basename "$2"): no assertion of $name"
    missing=1
  }
done
[ -n "$declared" ] || {
  echo "$(basename "$1"): no records"
  missing=1
}
exit "$missing"
