#!/usr/bin/env bash
# Reports system calls that a binary makes through the C library and that no test can make fail.
# usage: NM=nm check_calls.sh PROGRAM BINARY...
set -euo pipefail

program=$1
shift
numbers=$(printf '#include <sys/syscall.h>\n' | "${CC:-cc}" -E -dM - | sed -n 's/^#define __NR_\([a-z0-9_]*\) .*/\1/p' | sort -u)
interposed=$("$NM" --defined-only "$program" | awk '$2 == "T" {print $3}' | sort -u)
# They cannot fail, cannot be reached on a kernel of today or with a file as standard error, or end
# the process; syslog is libc's function, not the call of that name.
exempt='epoll_create exit geteuid getrandom nanosleep pause pipe poll syslog'
[ "$(wc -l <<<"$numbers")" -gt 100 ] || {
  echo "check_calls.sh: the system calls are not known" >&2
  exit 1
}

missing=$(for binary in "$@"; do "$NM" -D --undefined-only "$binary"; done |
  awk '{sub("@.*", "", $2); print $2}' | sort -u |
  comm -12 - <(echo "$numbers") | comm -23 - <(echo "$interposed") |
  comm -23 - <(tr ' ' '\n' <<<"$exempt" | sort))
[ -z "$missing" ] || {
  echo "check_calls.sh: no test fails ${missing//$'\n'/ }" >&2
  exit 1
}
