#!/usr/bin/env bash
# The SNMP agent on the target, under emulation, between an oltbox there and this machine's snmpd: what
# managers read, set and are notified of. All sockets are Unix ones. Then the agent over a platform library
# of its own.
# usage: agent.sh OLTBOX OLTSNMP OLTSNMP_ON_SKELETON MIB_MODULE SNMPD SNMPTRAPD EMULATOR [EMULATOR_ARGUMENT...]
set -euo pipefail
# shellcheck source=tests/target/servers.sh
. "$(dirname "$0")/servers.sh"

oltbox=$1
oltsnmp=$2
on_skeleton=$3
mib_module=$4
snmpd=$5
snmptrapd=$6
emulate=("${@:7}")
root=.1.3.6.1.4.1.32473

mkdir "$folder/persistent"
# MIBS: this machine's modules are no part of the test.
export SNMPCONFPATH=$folder SNMP_PERSISTENT_DIR=$folder/persistent MIBS=
cat >"$folder/snmpd.conf" <<END_OF_FILE
agentAddress unix:$folder/snmp
master agentx
agentXSocket unix:$folder/agentx
com2secunix all default olt
group all v2c all
view all included .1
access all "" any noauth exact all all none
trap2sink unix:$folder/traps public
END_OF_FILE
printf '%s\n' 'authCommunity log public' 'format2 %v\n' >"$folder/snmptrapd.conf"
echo '{"pon": {"interfaces": 2, "onus_per_interface": 2}}' >"$folder/topology.json"

snmp() { # TOOL NAME [ARGUMENT...]; the name is one below the root
  "$1" -v2c -c olt -Oqnx -t 5 -r 0 "unix:$folder/snmp" "$root$2" "${@:3}"
}

# What follows is printed within 30 seconds.
wait_for() { # COMMAND [ARGUMENT...]
  for ((i = 0; i < 300; i++)); do
    ! "$@" || return 0
    sleep 0.1
  done
  echo "agent.sh: no success: $*" >&2
  cat "$folder"/{agent,snmpd,traps.txt} >&2
  exit 1
}

"${emulate[@]}" "$oltsnmp" --mib | cmp - "$mib_module"

serve box '^oltbox: serving' "${emulate[@]}" "$oltbox" --state-dir "$folder/state" --topology "$folder/topology.json"
serve traps.txt 'NET-SNMP version' "$snmptrapd" -f -Lo -On "unix:$folder/traps"
serve snmpd 'NET-SNMP version' "$snmpd" -f -Lo -I -smux
serve agent 'AgentX subagent connected' \
  "${emulate[@]}" "$oltsnmp" --agentx "$folder/agentx" --writable --pace 10
# The first round of polling is what later ones are compared with. Of 21 exchanges, two are for the
# four ports, and the round ends with one that finds no more.
has_read() { # ROWS
  local count
  count=$(snmp snmpget .2.1.0 2>&1)
  [[ $count =~ \ ([0-9]+)$ ]] && [ "${BASH_REMATCH[1]}" -ge "$1" ]
}
wait_for has_read 75

# A number beyond those of 31 bits; a port that goes down.
snmp snmpset .1.97.1.10.1.1.1.1 u 4294967295 >/dev/null
snmp snmpset .1.70.1.26.1.3 i 0 >/dev/null
for table in .1.12 .1.70.1.26 .1.85.1.26 .1.97.1.10.1.1.1; do
  snmp snmpbulkwalk $table | sed "s/^$root//"
done >"$folder/walked"
diff -u - "$folder/walked" <<'TEXT'
.1.12.10.0 "02 00 00 00 00 01 "
.1.70.1.26.1.1 1
.1.70.1.26.1.2 1
.1.70.1.26.1.3 0
.1.70.1.26.1.4 1
.1.85.1.26.1.1.1 "02 20 01 00 01 01 "
.1.85.1.26.1.1.2 "02 20 01 00 02 01 "
.1.85.1.26.1.2.1 "02 20 02 00 01 01 "
.1.85.1.26.1.2.2 "02 20 02 00 02 01 "
.1.97.1.10.1.1.1.1 4294967295
.1.97.1.10.1.1.1.2 0
.1.97.1.10.1.1.1.3 0
.1.97.1.10.1.1.1.4 0
TEXT
wait_for grep -q "OID: $root.0.5	$root.1.75.1.26.1.3 = INTEGER: 0" "$folder/traps.txt"

end agent
end box

serve agent 'AgentX subagent connected' \
  "${emulate[@]}" "$on_skeleton" --agentx "$folder/agentx" --pace 0
wait_for has_read 0
diff -u - <(snmp snmpget .1.12.10.0) <<TEXT
$root.1.12.10.0 "02 00 5E 10 20 30 "
TEXT
end agent
end snmpd
end traps.txt
