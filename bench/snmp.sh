#!/usr/bin/env bash
# What a cell costs that oltsnmp serves, at 1,024 and at 16,384 rows: ten columns of the table of
# links, by the tools of net-snmp and a client of our own, under snmpd, with a simulated box.
# Seconds need a quiet machine; the agent's own time and its reads do not.
# usage: bench/snmp.sh BUILD_DIR [--check]
#   --check  fails when a goal is missed
set -euo pipefail

build=$(realpath "${1:?expected BUILD_DIR [--check]}")
[ -x "$build/bench/snmp_rows" ] || {
  echo "snmp.sh: $build has no bench/snmp_rows; expected a build with OLT_BENCH and OLT_AGENT" >&2
  exit 2
}
check=${2:-}
PATH=$PATH:/usr/sbin
root=.1.3.6.1.4.1.32473
columns=(42 46 50 54 58 62 66 70 74 78)
port=$((20000 + $$ % 10000))
folder=$(mktemp -d)
children=()
end() {
  kill "${children[@]}" 2>/dev/null || true
  wait 2>/dev/null || true
  rm -rf "$folder"
}
trap end EXIT
cd "$folder"
export SNMP_PERSISTENT_DIR=$folder/persistent SNMPCONFPATH=$folder MIBS=
cat >snmpd.conf <<END
agentAddress udp:127.0.0.1:$port
master agentx
agentXSocket unix:$folder/agentx
rwcommunity olt 127.0.0.1
maxGetbulkResponses -1
END

wait_for() { # FILE TEXT
  for _ in $(seq 500); do
    ! grep -qs "$2" "$1" || return 0
    sleep 0.02
  done
  echo "snmp.sh: no '$2' in $1" >&2
  exit 1
}

snmp() { # TOOL ARGUMENT...
  "$1" -v2c -c olt -t5 -r0 -Oqn "${@:2:$#-2}" "127.0.0.1:$port" "${@: -1}"
}

reads() {
  snmp snmpget -Ov "$root.2.1.0" | sed 's/.*: //'
}

by_column() { # TOOL OPTION...
  local column
  for column in "${columns[@]}"; do snmp "$@" "$root.1.86.1.$column"; done | grep -c "^$root.1.86.1"
}

by_row() {
  "$build/bench/snmp_rows" "127.0.0.1:$port" "$root.1.86.1" "${columns[@]}"
}

# Of the agent, in microseconds.
cpu_time() {
  awk -v hertz="$(getconf CLK_TCK)" '{ printf "%d", ($14 + $15) * 1000000 / hertz }' "/proc/$agent/stat"
}

missed=0
goal() { # NAME VALUE LIMIT
  awk -v value="$2" -v limit="$3" 'BEGIN { exit value <= limit }' || return 0
  echo "missed: $1 is $2, goal $3"
  missed=1
}

measure() { # NAME ROWS COMMAND...
  local name=$1 rows=$2 begin cells before took used
  sleep 1.2 # the cache
  before=$(reads)
  used=$(cpu_time)
  begin=$(date +%s%N)
  cells=$("${@:3}")
  took=$((($(date +%s%N) - begin) / 1000))
  [ "$cells" -eq $((rows * ${#columns[@]})) ] || {
    echo "snmp.sh: $name: $cells cells; expected $((rows * ${#columns[@]}))" >&2
    exit 1
  }
  used=$(($(cpu_time) - used))
  read -r seconds cost cpu per_cell < <(awk -v us="$took" -v cpu="$used" -v cells="$cells" \
    -v reads=$(($(reads) - before)) \
    'BEGIN { printf "%.2f %.1f %.1f %.3f\n", us / 1e6, us / cells, cpu / cells, reads / cells }')
  printf '%-20s %5d rows %6s s, a cell: %5s us, %5s us of the agent, %s reads\n' \
    "$name" "$rows" "$seconds" "$cost" "$cpu" "$per_cell"
}

snmpd -f -Lf snmpd.log &
snmpd=$!
children=("$snmpd")
for onus in 64 1024; do
  rows=$((onus * 16))
  echo "{\"pon\":{\"interfaces\":16,\"onus_per_interface\":$onus}}" >topology.json
  rm -rf state
  "$build/box/oltbox" --run-dir "$folder/run" --state-dir "$folder/state" --topology topology.json >box.log 2>&1 &
  box=$!
  wait_for box.log serving
  "$build/agent/oltsnmp" --agentx "$folder/agentx" --box "$folder/run" --pace 0 2>agent.log &
  agent=$!
  children+=("$box" "$agent")
  wait_for agent.log connected
  measure snmpwalk "$rows" by_column snmpwalk
  goal "reads per cell" "$per_cell" 1.01
  measure 'snmpbulkwalk -Cr50' "$rows" by_column snmpbulkwalk -Cr50
  goal "reads per cell" "$per_cell" 1.01
  [ "$rows" -ne 16384 ] || goal "seconds by column" "$seconds" 10
  costs[onus]=$cpu
  measure 'by row' "$rows" by_row
  goal "reads per cell by row" "$per_cell" 0.11
  [ "$rows" -ne 16384 ] || goal "seconds by row" "$seconds" 2
  printf '%-22s %d KiB\n' "memory" "$(awk '/^VmHWM/ { print $2 }' "/proc/$agent/status")"
  goal "KiB of memory" "$(awk '/^VmHWM/ { print $2 }' "/proc/$agent/status")" 32768
  kill "$agent" "$box"
  wait "$agent"
  wait "$box"
  children=("$snmpd")
done
goal "growth of a cell's cost" "$(awk -v a="${costs[64]}" -v b="${costs[1024]}" 'BEGIN { printf "%.2f", b / a }')" 1.25
[ -z "$check" ] || exit "$missed"
