#!/usr/bin/env bash
# Runs all measurements one after the other and prints one table of what they found.
# usage: bench/run.sh BUILD_DIR TARGET_BUILD_DIR RESULTS_DIR [--check] [--pictures]
#   --check     fails when a goal is missed
#   --pictures  rewrites the table and the pictures of docs/performance.md
set -euo pipefail
cd "$(dirname "$0")/.."

die() {
  echo "bench: $*" >&2
  exit 1
}

[ $# -ge 3 ] || die "wrong arguments; expected BUILD_DIR TARGET_BUILD_DIR RESULTS_DIR [--check] [--pictures]"
build=$1 target_build=$2 results=$3
shift 3
check=no pictures=no
for option in "$@"; do
  case $option in
    --check) check=yes ;;
    --pictures) pictures=yes ;;
    *) die "there is no option '$option'; expected --check or --pictures" ;;
  esac
done

# Puts the table where docs/performance.md has a place for it.
update_page() {
  local page=docs/performance.md
  {
    sed '/^<!-- begin:/q' "$page"
    printf '%s, Linux %s:\n\n```\n' "$(sed -n 's/^model name.*: //p' /proc/cpuinfo | head -n 1)" "$(uname -r | sed 's/-.*//')"
    cat "$results/table.txt"
    printf '```\n'
    sed -n '/^<!-- end -->/,$p' "$page"
  } >"$results/page.md"
  cp "$results/page.md" "$page"
}

mkdir -p "$results"
echo "bench: instructions" >&2
bench/instructions/run.sh "$build" "$target_build" "$results/instructions.tsv"
tables=("$results/instructions.tsv")
captures=$(mktemp -d "$results/captures-XXXXXX")
trap 'rm -rf "$captures"' EXIT
export OLT_CAPTURE="$captures/%p.pcapng"  # for the part that records
for part in growth exchange capture replay box state command_line; do
  echo "bench: $part" >&2
  "$build/bench/bench_$part" "$results/$part.tsv"
  tables+=("$results/$part.tsv")
done

{
  awk -F '\t' '
    function line(name, p50, p99, unit, against, ratio, spread, goal, met) {
      printf "%-33s %7s %7s %-12s  %-23s %6s  %-15s  %-16s %s\n", name, p50, p99, unit, against, ratio, spread, goal, met
    }
    BEGIN { line("measured", "p50", "p99", "unit", "against", "ratio", "10 % to 90 %", "goal", "met") }
    $1 == "row" { line($2, $3, $4, $5, $6, $7, ($8 == "-" ? "-" : $8 " to " $9), $10, $11) }
  ' "${tables[@]}"
  echo
  awk -F '\t' '
    function line(shape, operation, t, ts, tr, tc, h, hs, hr, hc) {
      printf "%-17s %-30s  %7s %8s %5s %5s  %7s %8s %5s %5s\n", shape, operation, t, ts, tr, tc, h, hs, hr, hc
    }
    BEGIN {
      line("instructions", "", "target", "straight", "ratio", "+libc", "host", "straight", "ratio", "+libc")
    }
    $1 == "call" { line($2, $3, $4, $5, $6, $7, $8, $9, $10, $11) }
  ' "$results/instructions.tsv"
} | tee "$results/table.txt"

if [ $pictures = yes ]; then
  gnuplot -e "results='$results'; out='docs'" bench/pictures.gp
  update_page
fi
if [ $check = yes ] && grep -q -P '^row\t.*\tno$' "${tables[@]}"; then
  die "a goal is missed"
fi
