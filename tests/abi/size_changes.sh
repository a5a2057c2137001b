#!/usr/bin/env bash
# scripts/sizes.sh accepts the recorded sizes, and finds a changed size and an enforced goal that is
# not reached.
# usage: size_changes.sh BUILD_FOLDER
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
sizes=$here/../../scripts/sizes.sh
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
recorded=$work/sizes.csv
goals=$work/goals.csv

printf 'name,max,enforced\n.text,1,no\n' >"$goals"
touch "$recorded"
"$sizes" "$1" --update "$recorded" "$goals" >/dev/null
"$sizes" "$1" --check "$recorded" "$goals"

sed -i 's/,no$/,yes/' "$goals"
"$here/expect_complaint.sh" "of at most 1 bytes: not reached, enforced" "$sizes" "$1" --check "$recorded" "$goals"

sed -i 's/,1,yes$/,1,no/' "$goals"
sed -i -E 's/^(get_olt_mac),.*/\1,4/' "$recorded"
"$here/expect_complaint.sh" "-get_olt_mac,4" "$sizes" "$1" --check "$recorded" "$goals"
