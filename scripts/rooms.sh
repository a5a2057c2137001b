#!/usr/bin/env bash
# Checks the includes against the table of folders in docs/architecture.md: a file may include only
# what the row of its folder allows. Prints each include that breaks the rule.
# usage: scripts/rooms.sh [TREE]
set -euo pipefail
cd "${1:-$(dirname "$0")/..}"

rows=$(awk -F'|' '
  /^\| folder /       { table = 1; next }
  table && !/^\|/     { table = 0 }
  table && $2 ~ /`/   { gsub(/[` ]/, "", $2); print $2 "|" $4 }' docs/architecture.md)
[ -n "$rows" ] || { echo "rooms: docs/architecture.md has no table of folders" >&2; exit 2; }

find . \( -name build -o -name .git \) -prune -o \( -name '*.h' -o -name '*.cc' -o -name '*.c' \) -print |
  sed 's|^\./||' | xargs grep -nE '^#include "' |
  awk -F: -v rows="$rows" '
    # The longest row that the path lies in.
    function room_of(path,   room, best) {
      best = ""
      for (room in allowed)
        if (index(path, room) == 1 && length(room) > length(best)) best = room
      return best
    }
    BEGIN {
      count = split(rows, lines, "\n")
      for (i = 1; i <= count; i++) {
        split(lines[i], cells, "|")
        allowed[cells[1]] = cells[2]
      }
    }
    {
      split($3, parts, "\"")
      included = parts[2]
      from = room_of($1)
      if (from == "") { print $1 ": stands in no folder of the table"; bad = 1; next }
      to = index(included, "/") ? room_of(included) : "include/"
      if (to == "" || to == from || allowed[from] ~ /all/ || index(allowed[from], "`" to "`")) next
      print $1 ":" $2 ": includes " included ", but " from " may use" allowed[from]
      bad = 1
    }
    END { exit bad }'
