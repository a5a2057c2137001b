#!/usr/bin/env bash
# A short tour on a real simulated box: what is sent, what comes back, a listing, a fault.
# usage: scripts/tour.sh BUILD_FOLDER
set -euo pipefail

build=${1:?"usage: scripts/tour.sh BUILD_FOLDER"}
oltbox=$build/box/oltbox
oltctl=$build/cli/oltctl
home=$(mktemp -d)
box=

finish() {
  end_box TERM
  rm -rf "$home"
}
trap finish EXIT

if [ -t 1 ]; then bold=$'\e[1m' plain=$'\e[0m'; else bold='' plain=''; fi

say() {
  printf '\n%s%s%s\n' "$bold" "$*" "$plain"
}

# Starts oltbox and waits for the line that says it is ready.
start_box() {
  printf '$ oltbox &\n'
  : >"$home/ready"
  "$oltbox" --state-dir "$home/state" >"$home/ready" &
  box=$!
  disown "$box"
  until [ -s "$home/ready" ]; do
    kill -0 "$box" 2>/dev/null || exit 1
    sleep 0.05
  done
}

# Sends oltbox a signal and waits for its end.
end_box() {
  kill -s "$1" "$box" 2>/dev/null || return 0
  while kill -0 "$box" 2>/dev/null; do sleep 0.05; done
}

# Shows a command as a user would type it, then runs it.
try() {
  printf '$ oltctl %s\n' "$*"
  "$oltctl" "$@" 2>&1
}

say "1. A box to talk to: oltbox simulates the management modules in a process of its own."
export OLT_RUN_DIR=$home/run
start_box
cat "$home/ready"

say "2. One operation is one request and its answer. --trace shows both as they travel."
try --trace get_olt_mac

say "3. What one front end sets, the next one reads. A trace never shows secrets."
try --trace add_user_level name=operator password=secret level_a=1 level_b=2
try get_user_level operator secret

say "4. Listings are files that the box writes; the operation returns the file's name."
try get_system_basicinfofile

say "5. Faults can be injected: the next get_olt_mac is refused with status 5."
try fault add type=get_olt_mac status=5 count=1
if try get_olt_mac; then exit 1; fi
try get_olt_mac

say "6. Saved settings survive: the box is killed, started again, and still knows its operator."
try save_system_config
printf '$ kill -9 %%oltbox\n'
end_box KILL
start_box
try get_user_level operator secret

say "That was liboltmgmt, end to end. Next: README.md, or oltctl help in ${build#"$PWD"/}/cli."
