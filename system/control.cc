#include "oltmgmt.h"
#include "transport/shapes.h"

using namespace olt;

static_assert(sizeof(olt_system_network) == 172 && sizeof(olt_sntp_config) == 88);

int32_t do_set_ukernel_inserver(void) {
  return post(5);
}

int32_t do_information_system_running_will_start(void) {
  return post(6);
}

int32_t do_reboot_system(void) {
  return post(7);
}

int32_t save_system_config(void) {
  return post(8);
}

int32_t default_system_config(void) {
  return post(9);
}

int32_t set_system_ipaddress(const olt_system_network *network) {
  return post(50, *network);
}

int32_t set_system_dns(const olt_system_network *network) {
  return post(51, *network);
}

int32_t Cl_Set_SntpCfg_apply(const olt_sntp_config *config) {
  return post(52, *config);
}
