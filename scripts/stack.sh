#!/usr/bin/env bash
# Stack use on the target of each operation and everything it calls in the library, as reported by
# the compiler. Prints the operation that uses the most. Fails if an operation outside flash/ uses more
# than MAX bytes or if its use cannot be determined.
# usage: scripts/stack.sh BUILD_FOLDER MAX
set -euo pipefail
cd "$(dirname "$0")/.."

objects=$1/CMakeFiles/oltmgmt_objects.dir
max=$2

nodes_and_edges() {
  find "$objects" -name '*.ci' | while read -r file; do
    sed -nE -e "s|^node: \{ title: \"([^\"]*)\" .*\\\\n([0-9]+) bytes \(([a-z,]*)\)\" .*|node \1 \2 \3 ${file#"$objects/"}|p" \
      -e 's|^edge: \{ sourcename: "([^"]*)" targetname: "([^"]*)".*|edge \1 \2|p' "$file"
  done
}

{
  grep -v -e '^#' -e '^$' abi/imports.txt | sed 's/^/import /'
  mipsel-linux-gnu-nm -D --defined-only "$1/liboltmgmt.so.0" |
    sed -nE 's/^[0-9a-f]+ T ([^@]*).*/operation \1/p'
  nodes_and_edges
} | awk -v max="$max" '
  $1 == "import" { imported[$2] }
  $1 == "operation" { operation[$2] }
  $1 == "node" { own[$2] = $3; kind[$2] = $4; file[$2] = $5 }
  $1 == "edge" { called[$2] = called[$2] " " $3 }

  function complain(text) { print "stack.sh: " text; wrong = 1 }

  function taken(name, names, count, i, deepest, bytes) {
    if (name in total) return total[name]
    if (!(name in own)) {
      if (!(name in imported)) complain("unknown stack use of " name)
      return total[name] = 0
    }
    if (kind[name] != "static") complain(name " has " kind[name] " stack use")
    if (name in open) { complain(name " calls itself"); return 0 }
    open[name]
    count = split(called[name], names, " ")
    for (i = 1; i <= count; ++i) {
      bytes = taken(names[i])
      if (bytes > deepest) deepest = bytes
    }
    return total[name] = own[name] + deepest
  }

  END {
    for (name in operation) {
      bytes = taken(name)
      if (file[name] ~ /^flash\//) continue
      if (bytes > max) complain(name " uses " bytes " bytes; expected at most " max)
      if (deepest_operation == "" || bytes > taken(deepest_operation)) deepest_operation = name
      ++count
    }
    if (count == 0) complain("there are no operations")
    printf "stack: at most %d of %d bytes, in %s (%d operations outside flash/)\n", taken(deepest_operation), max, deepest_operation, count
    exit wrong
  }'
