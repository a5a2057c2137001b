#!/usr/bin/env bash
# The tables of records in docs/box.md are those of the catalog, and a difference is noticed.
# usage: record_tables.sh OLTCTL CHECK
set -euo pipefail

catalog=$("$1" list --json)
"$2" <<<"$catalog"
! "$2" <<<"${catalog//\"forward_delay\"/\"forward_time\"}" 2>/dev/null || {
  echo "another name of a field was not noticed"
  exit 1
}
