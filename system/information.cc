#include "oltmgmt.h"
#include "transport/shapes.h"

using namespace olt;

static_assert(sizeof(olt_mac) == 6 && sizeof(olt_snmp_param) == 136 &&
              sizeof(olt_snmp_systeminfo) == 196);

int32_t get_olt_mac(olt_mac *mac) {
  return fetch(12, mac);
}

int32_t show_running_configuration_file(char name[32]) {
  return fetch_range(33, kResultName, name);
}

int32_t get_system_basicinfofile(char name[32]) {
  return fetch_range(53, kResultName, name);
}

int32_t set_snmp_param(const olt_snmp_param *param) {
  return post(56, *param);
}

int32_t get_snmp_param(olt_snmp_param *param) {
  return fetch(57, param);
}

int32_t get_system_network(olt_system_network *network) {
  return fetch_over(58, *network);
}

int32_t set_snmp_systeminfo(const olt_snmp_systeminfo *info) {
  return post(59, *info);
}

int32_t get_snmp_systeminfo(olt_snmp_systeminfo *info) {
  return fetch(60, info);
}
