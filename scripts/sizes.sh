#!/usr/bin/env bash
# Bytes on the target, per section and exported function of the library, and of the recorder: the
# changes from abi/sizes.csv, and whether the goals in abi/size_goals.csv are reached.
# usage: scripts/sizes.sh BUILD_FOLDER [--check | --update] [RECORDED GOALS]
# --check shows only changes; it fails on any change and on an enforced goal that is not reached.
# --update records the current sizes.
set -euo pipefail
cd "$(dirname "$0")/.."

library=$1/liboltmgmt.so.0
mode=${2:-}
recorded=${3:-abi/sizes.csv}
goals=${4:-abi/size_goals.csv}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
measured=$work/sizes.csv
mipsel-linux-gnu-strip -o "$work/stripped" "$library"
mipsel-linux-gnu-strip -o "$work/trace" "$1/capture/libolttrace.so"
{
  echo "name,bytes"
  mipsel-linux-gnu-size -A "$work/stripped" | awk '$1 ~ /^\./ {print $1 "," $2}'
  mipsel-linux-gnu-size -B "$work/stripped" | awk 'NR == 2 {print "total in memory," $4}'
  echo "stripped file,$(stat -c %s "$work/stripped")"
  echo "stripped libolttrace.so,$(stat -c %s "$work/trace")"
  mipsel-linux-gnu-nm -D -S -t d --defined-only "$library" | awk '$3 == "T" {sub("@.*", "", $4); print $4 "," $2 + 0}' | sort
} >"$measured"

case $mode in
  --update) cp "$measured" "$recorded" ;;
  --check | '') ;;
  *)
    echo "sizes.sh: unknown argument '$mode'; expected --check or --update" >&2
    exit 2
    ;;
esac

awk -F, -v all="$([ "$mode" = --check ] || echo yes)" 'NR == FNR {old[$1] = $2; next} FNR > 1 {
  change = ($1 in old) ? $2 - old[$1] : $2
  if (all || change) printf "%-44s %7d %+6d\n", $1, $2, change
}' "$recorded" "$measured"

missed=0
awk -F, 'NR == FNR {bytes[$1] = $2; next} FNR > 1 {
  reached = $1 in bytes && bytes[$1] <= $2
  enforced = $3 == "yes"
  printf "goal: %s %d of at most %d bytes: %s%s\n", $1, bytes[$1], $2, reached ? "reached" : "not reached", enforced ? ", enforced" : ""
  if (!reached && enforced) missed = 1
} END {exit missed}' "$measured" "$goals" || missed=1

[ "$mode" = --check ] || exit 0
diff -u "$recorded" "$measured" || {
  echo "sizes.sh: sizes on the target changed; record them in the same commit: ./dev renew" >&2
  exit 1
}
[ "$missed" -eq 0 ] || {
  echo "sizes.sh: a goal that $goals enforces is not reached" >&2
  exit 1
}
