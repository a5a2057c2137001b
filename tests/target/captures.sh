#!/usr/bin/env bash
# An unmodified front end on the target, under emulation: libolttrace.so records it on an oltbox and
# keeps its listing, oltreplay serves both again, and oltctl finds that another oltbox answers alike.
# usage: captures.sh OLTBOX OLTCTL OLTREPLAY LIBOLTTRACE VLAN_REPORT EMULATOR [EMULATOR_ARGUMENT...]
set -euo pipefail
# shellcheck source=tests/target/servers.sh
. "$(dirname "$0")/servers.sh"

oltbox=$1
oltctl=$2
oltreplay=$3
recorder=$4
front_end=$5
emulate=("${@:6}")
captures=$folder/captures
mkdir "$captures"

cat >"$folder/expected" <<'TEXT'
VLANs of olt
============

3 VLANs
VLAN  Tagged ports  Untagged ports  Description
----  ------------  --------------  -----------
1     -             1/1-4           default
10    -             -               -
4094  -             -               -
TEXT

serve box '^oltbox: serving' "${emulate[@]}" "$oltbox" --state-dir "$folder/recorded"
QEMU_SET_ENV=LD_PRELOAD=$recorder OLT_CAPTURE=$captures/%p.pcapng OLT_CAPTURE_FILES=$captures \
  "${emulate[@]}" "$front_end" "$OLT_RUN_DIR" 10 4094 >"$folder/first" 2>&1
diff -u "$folder/expected" "$folder/first"
end box
cmp "$captures"/*.listing "$folder/expected"

# What the box left is gone.
rm -r "$OLT_RUN_DIR"
serve replay '^oltreplay: serving modules 2 in' \
  "${emulate[@]}" "$oltreplay" --strict --files "$captures" "$captures"/*.pcapng
"${emulate[@]}" "$front_end" "$OLT_RUN_DIR" 10 4094 >"$folder/again" 2>&1
diff -u "$folder/expected" "$folder/again"
end replay
diff -u - "$folder/replay" <<TEXT
oltreplay: serving modules 2 in $OLT_RUN_DIR
oltreplay: answered 2 requests; 0 not recorded, 0 out of order
oltreplay: 2 of 2 recorded exchanges served
TEXT

serve box '^oltbox: serving' "${emulate[@]}" "$oltbox" --state-dir "$folder/compared"
"${emulate[@]}" "$oltctl" --all --yes compare "$captures"/*.pcapng >"$folder/comparison"
diff -u - "$folder/comparison" <<'TEXT'
operation      exchanges  equal  differing  skipped
-------------  ---------  -----  ---------  -------
add_vlan_list  1          1      0          0
get_vlan_all   1          1      0          0
all            2          2      0          0
TEXT
end box
