#!/usr/bin/env bash
# Counts the instructions of one call of each operation, of the library and of its straight-line
# rendering, for the target and for the host, and compares what they take of the target's memory.
# usage: bench/instructions/run.sh BUILD_DIR TARGET_BUILD_DIR RESULTS_FILE
# Leaves the counts of all operations beside the results.
set -euo pipefail
cd "$(dirname "$0")/../.."

die() {
  echo "bench: $*" >&2
  exit 1
}

[ $# -eq 3 ] || die "wrong arguments; expected BUILD_DIR TARGET_BUILD_DIR RESULTS_FILE"
build=$1 target_build=$2 results=$3
max_instructions=1.5 # of the straight lines
max_text=0.4
max_stack=600
# A rendering that was once written by hand, in C, one operation after the other.
hand_written_text=41216
hand_written_file=54892

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# One operation of each shape; operations without a line are counted in the sums alone.
cat >"$work/shapes" <<'EOF'
post	save_system_config
post_value	set_debug_enable
post_setting	set_uplink_sfp_module
fetch	get_olt_mac
fetch_over	get_snmp_olt_port_status
fetch_keep	get_port_enable
interface listing	get_onulist_file_byinteface
ask	get_olt_auth_mode
fetch_copy	do_handle_epon_updatestream
hand_over	get_igmpproxy_config_all
post_target	set_ont_port_vlanmode
post_target_word	set_ont_port_alarmsetting
fetch_row	process_snmp_onusipparaminfo
post_block	add_authallowed_mac
fetch_block	process_snmp_onubasicinfo
list of 3 VLANs	add_vlan_list
account	get_user_level
two exchanges	set_system_loglevel
EOF

# The instructions of each operation, without those that surround a call: name, library, libc.
count() { # PROGRAM EMULATOR...
  env -i PATH="$PATH" "${@:2}" -E LD_BIND_NOW=1 -d plugin -D "$work/counts" \
    -plugin "$build/bench/instructions/bench_instructions_count.so" "$1" >"$work/names" || die "$1 failed"
  paste "$work/names" "$work/counts" | awk -F '\t' -v OFS='\t' '
    NF != 3 || (NR > 1 && $2 <= library) { exit 1 }
    NR == 1 { library = $2; libc = $3; next }
    { print $1, $2 - library, $3 - libc }' || die "the emulator did not count what $1 does"
}

# The counts of both renderings, side by side. They are the same in every run, or it is an error.
count_both() { # BUILD_DIR OUTPUT EMULATOR...
  local rendering again
  for rendering in oltmgmt oltmgmt_straight_line; do
    for again in first second; do
      count "$1/bench/instructions/bench_instructions_$rendering" "${@:3}" >"$work/$rendering.$again"
    done
    cmp -s "$work/$rendering.first" "$work/$rendering.second" || die "$3 does not count the same in every run"
  done
  {
    printf 'operation\tlibrary\tlibc\tstraight line\tlibc\n'
    join -t $'\t' <(sort "$work/oltmgmt.first") <(sort "$work/oltmgmt_straight_line.first")
  } >"$2"
}

# Functions that are not exported would mean that something is shared after all.
check_straight() { # LIBRARY
  local symbols shared
  symbols=$(nm "$1") || die "cannot read $1; expected it to be built"
  shared=$(sed -n '/ t _MIPS_STUBS_$/d; s/.* t //p' <<<"$symbols")
  [ -z "$shared" ] || die "$1 is no straight line: it has ${shared//$'\n'/, }"
}

text() { size -A "$1" | awk '$1 == ".text" { print $2 }'; }

stripped() {
  mipsel-linux-gnu-strip -o "$work/stripped" "$1"
  stat -c %s "$work/stripped"
}

row() { # NAME VALUE UNIT AGAINST AGAINST_VALUE [MOST]
  awk -v OFS='\t' -v name="$1" -v value="$2" -v unit="$3" -v against="$4" -v other="$5" -v max="${6:-}" 'BEGIN {
    ratio = value / other
    print "row", name, value, "-", unit, against, sprintf("%.3f", ratio), "-", "-",
      (max == "" ? "-" : "ratio <= " max), (max == "" ? "-" : ratio <= max ? "yes" : "no")
  }'
}

sum() { # COUNTS COLUMN...
  awk -F '\t' -v columns="${*:2}" 'NR > 1 { for (i = split(columns, c, " "); i > 0; --i) all += $c[i] } END { print all }' "$1"
}

sums() { # PLACE COUNTS [MOST]
  local operations
  operations=$(($(wc -l <"$2") - 1))
  row "$operations operations, $1" "$(sum "$2" 2)" instructions "straight line" "$(sum "$2" 4)" "${3:-}"
  row "$operations operations, $1, with libc" "$(sum "$2" 2 3)" instructions "straight line" "$(sum "$2" 4 5)"
}

stack_row() {
  local account met=yes
  account=$(scripts/stack.sh "$target_build" "$max_stack") || met=no
  echo "bench: $account" >&2
  awk -v OFS='\t' -v met=$met -v most="$max_stack" '/^stack: at most/ {
    print "row", "stack at most, target", $4, "-", "bytes", "-", "-", "-", "-", "p50 <= " most " bytes", met
  }' <<<"$account"
}

target_counts=${results%.tsv}-target.tsv host_counts=${results%.tsv}-host.tsv
library=$target_build/liboltmgmt.so.0
straight_line=$target_build/bench/instructions/liboltmgmt_straight_line.so
check_straight "$straight_line"
check_straight "$build/bench/instructions/liboltmgmt_straight_line.so"
count_both "$target_build" "$target_counts" qemu-mipsel -L /usr/mipsel-linux-gnu
count_both "$build" "$host_counts" "qemu-$(uname -m)"

{
  sums target "$target_counts" "$max_instructions"
  sums host "$host_counts"
  row "text, target" "$(text "$library")" bytes "straight line" "$(text "$straight_line")" "$max_text"
  row "text, target" "$(text "$library")" bytes "written by hand" "$hand_written_text" "$max_text"
  row "stripped file, target" "$(stripped "$library")" bytes "straight line" "$(stripped "$straight_line")"
  row "stripped file, target" "$(stripped "$library")" bytes "written by hand" "$hand_written_file"
  stack_row
  awk -F '\t' -v OFS='\t' '
    FILENAME == ARGV[1] { target[$1] = $2 OFS $4 OFS sprintf("%.2f", $2 / ($4 ? $4 : 1)) OFS $3; next }
    FILENAME == ARGV[2] { host[$1] = $2 OFS $4 OFS sprintf("%.2f", $2 / ($4 ? $4 : 1)) OFS $3; next }
    !($2 in target) { print "bench: there is no operation " $2 >"/dev/stderr"; exit 1 }
    { print "call", $1, $2, target[$2], host[$2] }
  ' "$target_counts" "$host_counts" "$work/shapes"
} >"$work/results"
cp "$work/results" "$results"
