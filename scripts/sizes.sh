#!/usr/bin/env bash
# Bytes on the target: per exported function and per section, with the change against
# abi/sizes.csv. --check fails on any difference, --update records today's figures.
set -euo pipefail
cd "$(dirname "$0")/.."

library=$1/liboltmgmt.so.0
mode=${2:-}
recorded=abi/sizes.csv

stripped=$(mktemp)
trap 'rm -f "$stripped" "$stripped.csv"' EXIT
mipsel-linux-gnu-strip -o "$stripped" "$library"
{
  echo "name,bytes"
  mipsel-linux-gnu-size -A "$stripped" | awk '$1 ~ /^\./ {print $1 "," $2}'
  echo "stripped file,$(stat -c %s "$stripped")"
  mipsel-linux-gnu-nm -D -S -t d --defined-only "$library" | awk '$3 == "T" {sub("@.*", "", $4); print $4 "," $2 + 0}' | sort
} >"$stripped.csv"

case $mode in
  --update)
    cp "$stripped.csv" "$recorded"
    ;;
  --check)
    diff -u "$recorded" "$stripped.csv" || {
      echo "sizes.sh: sizes on the target changed; record them in the same commit: ./dev size --update" >&2
      exit 1
    }
    ;;
  '') ;;
  *)
    echo "sizes.sh: unknown argument '$mode'; expected --check or --update" >&2
    exit 2
    ;;
esac

awk -F, 'NR == FNR {old[$1] = $2; next} FNR > 1 {
  change = ($1 in old) ? $2 - old[$1] : $2
  printf "%-44s %7d %+6d\n", $1, $2, change
}' "$recorded" "$stripped.csv"
