#include "oltmgmt.h"
#include "transport/shapes.h"

using namespace olt;

static_assert(sizeof(olt_vlan_id_row) == 52 && sizeof(olt_basic_port_row) == 48 &&
              sizeof(olt_auth_row) == 60);

int32_t process_snmp_vlan_id(olt_vlan_id_row *row) {
  return fetch_over(73, *row);
}

int32_t process_snmp_oltbasicport(olt_basic_port_row *row) {
  return fetch_over(75, *row);
}

int32_t process_snmp_oltauth(olt_auth_row *row) {
  return fetch_over(80, *row);
}
