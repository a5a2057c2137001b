#!/usr/bin/env bash
# The programs built for the target, under emulation: oltctl sets VLANs on an oltbox in another
# process and reads the listing that the box writes.
# usage: programs.sh OLTBOX OLTCTL EMULATOR [EMULATOR_ARGUMENT...]
set -euo pipefail

oltbox=$1
oltctl=$2
emulate=("${@:3}")
folder=$(mktemp -d)
export OLT_RUN_DIR=$folder/run

"${emulate[@]}" "$oltbox" --state-dir "$folder/state" >"$folder/output" &
box=$!

finish() {
  [ -z "$box" ] || ! kill -0 "$box" 2>/dev/null || kill -KILL "$box"
  rm -rf "$folder"
}
trap finish EXIT

for ((i = 0; i < 300; i++)); do
  ! grep -q '^oltbox: serving' "$folder/output" || break
  kill -0 "$box" || exit 1
  sleep 0.1
done

"${emulate[@]}" "$oltctl" add_vlan_list vlans=10,20-22
"${emulate[@]}" "$oltctl" get_vlan_all >"$folder/listing"
diff -u - "$folder/listing" <<'END'
name = vlan-00000001.txt
VLANs of olt
============

5 VLANs
VLAN  Tagged ports  Untagged ports  Description
----  ------------  --------------  -----------
1     -             1/1-4           default
10    -             -               -
20    -             -               -
21    -             -               -
22    -             -               -
END

# On SIGTERM, the box ends with exit status 0.
kill "$box"
wait "$box"
box=
