#!/usr/bin/env bash
# The programs built for the target, under emulation: oltctl sets VLANs on an oltbox in another
# process and reads the listing that the box writes.
# usage: programs.sh OLTBOX OLTCTL EMULATOR [EMULATOR_ARGUMENT...]
set -euo pipefail
# shellcheck source=tests/target/servers.sh
. "$(dirname "$0")/servers.sh"

oltbox=$1
oltctl=$2
emulate=("${@:3}")

serve box '^oltbox: serving' "${emulate[@]}" "$oltbox" --state-dir "$folder/state"
"${emulate[@]}" "$oltctl" add_vlan_list vlans=10,20-22
"${emulate[@]}" "$oltctl" get_vlan_all >"$folder/listing"
diff -u - "$folder/listing" <<'TEXT'
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
TEXT
end box
