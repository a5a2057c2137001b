#!/usr/bin/env bash
# Fuzzes all targets of a build, or one: fuzz/run.sh BUILD [SECONDS [TARGET]]
# Leaves inputs that break a rule in BUILD/findings, with the program's output.
# Inputs that led to new code are kept in BUILD/corpus for the next run.
set -euo pipefail
build=$1
seconds=${2:-30}
[[ $seconds =~ ^[1-9][0-9]*$ ]] || {
  echo "fuzz: '$seconds' given; expected a number of seconds, such as 30" >&2
  exit 2
}
here=$(dirname "$0")
mapfile -t targets < <(cd "$here/corpus" && printf '%s\n' *)
if [ $# -gt 2 ]; then
  [ -d "$here/corpus/$3" ] || {
    echo "fuzz: there is no target '$3'; expected one of: ${targets[*]}" >&2
    exit 2
  }
  targets=("$3")
fi

# Memory, where there is such a file system: the box writes its state for every input.
TMPDIR=$(mktemp -d "$([ -w /dev/shm ] && echo /dev/shm || echo "${TMPDIR:-/tmp}")/olt-fuzz-XXXXXX")
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT
mkdir -p "$build/findings"

fuzz() {
  local target=$1 options=()
  mkdir -p "$build/corpus/$target"
  [ ! -f "$here/dictionaries/$target" ] || options+=("-dict=$here/dictionaries/$target")
  "$build/fuzz/fuzz_$target" "-max_total_time=$seconds" -max_len=4096 -timeout=20 \
    -rss_limit_mb=4096 -print_final_stats=1 "-artifact_prefix=$build/findings/$target-" \
    "${options[@]}" "$build/corpus/$target" "$here/corpus/$target" >"$build/$target.log" 2>&1
}

report() {
  local target=$1 runs
  if fuzz "$target"; then
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$build/$target.log")
    echo "fuzz: $target: $runs inputs in $seconds s, nothing found"
    return
  fi
  cp "$build/$target.log" "$build/findings/$target.log"
  grep -E '^(broken rule|by|SUMMARY)|ERROR: |runtime error|Test unit written' \
    "$build/$target.log" | cut -c 1-400 || tail -n 20 "$build/$target.log"
  echo "fuzz: $target: a finding; see $build/findings" >&2
  return 1
}

# One target for each CPU at a time.
status=0
running=()
for target in "${targets[@]}"; do
  report "$target" &
  running+=($!)
  if [ ${#running[@]} -ge "$(nproc)" ]; then
    wait "${running[0]}" || status=1
    running=("${running[@]:1}")
  fi
done
for process in "${running[@]}"; do wait "$process" || status=1; done
exit $status
