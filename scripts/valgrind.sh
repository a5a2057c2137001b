#!/usr/bin/env bash
# Looks for memory errors and leaks with Valgrind: in the library with its table of operations, in
# oltbox and oltctl with a session.
# usage: scripts/valgrind.sh BUILD_FOLDER
#
# Debian packages: valgrind
set -euo pipefail

build=${1:?"usage: scripts/valgrind.sh BUILD_FOLDER"}
home=$(mktemp -d)
box=
calls=0

finish() {
  [ -z "$box" ] || ! kill -0 "$box" 2>/dev/null || kill -KILL "$box"
  rm -rf "$home"
}
trap finish EXIT

# Prints what Valgrind found and fails if it found anything. Blocks that are still reachable at the
# end are not leaks: the platform keeps its tables to the very end.
check=(valgrind --quiet --leak-check=full "--show-leak-kinds=definite,indirect,possible"
  "--errors-for-leak-kinds=definite,indirect,possible" --error-exitcode=99)

# One call of oltctl.
call() {
  calls=$((calls + 1))
  "${check[@]}" "$build/cli/oltctl" "$@" >"$home/output" 2>"$home/errors" || {
    cat "$home/output" "$home/errors" >&2
    echo "valgrind.sh: oltctl $1 failed" >&2
    exit 1
  }
}

"${check[@]}" "$build/tests/library/operation_table" >"$home/output" 2>&1 || {
  tail -n 40 "$home/output" >&2
  echo "valgrind.sh: the library's table failed" >&2
  exit 1
}
echo "valgrind.sh: library: $(tail -n 1 "$home/output")"

export OLT_RUN_DIR=$home/run
: >"$home/ready"
"${check[@]}" "$build/box/oltbox" --state-dir "$home/state" >"$home/ready" 2>"$home/box" &
box=$!
until [ -s "$home/ready" ]; do
  kill -0 "$box" 2>/dev/null || { cat "$home/box" >&2; exit 1; }
  sleep 0.1
done
call get_olt_mac
call add_user_level name=operator password=secret level_a=1 level_b=2
call get_user_level operator secret
call add_vlan_list 100-200,300
call get_vlan_all
call get_system_basicinfofile
call set_ont_port_downrate ont=1/1/1:1 rates=1,2,3
call process_onu_portdownrate ont=1/1/1:1
call save_system_config
call do_reboot_system
call get_user_level operator secret
kill -TERM "$box"
wait "$box" || {
  cat "$home/box" >&2
  echo "valgrind.sh: oltbox failed" >&2
  exit 1
}
box=
echo "valgrind.sh: session: oltbox and $calls calls of oltctl"
