#include "oltmgmt.h"
#include "transport/block.h"
#include "transport/ont_target.h"

using namespace olt;

static_assert(sizeof(olt_uni_vlan_mode) == 36 && sizeof(olt_uni_downrate) == 12 &&
              sizeof(olt_uni_policing) == 16 && sizeof(olt_uni_block) == 44);

int32_t get_ont_port_alarmsetting(const olt_ont_target *ont, char name[32]) {
  return fetch_ont_listing(104, ont, name);
}

int32_t set_ont_port_alarmsetting(const olt_ont_target *ont, uint32_t port_value) {
  return flatten(post_target_word(ont, port_value, OLT_CALL(105, 2761, 2769)));
}

int32_t set_ont_port_loopback(const olt_ont_target *ont, uint32_t port_value) {
  return flatten(post_target_word(ont, port_value, OLT_CALL(117, 2788, 2796)));
}

int32_t show_ont_port_vlanmode(const olt_ont_target *ont, char name[32]) {
  return fetch_ont_listing(128, ont, name);
}

int32_t set_ont_port_vlanmode(const olt_ont_target *ont, const olt_uni_vlan_mode *mode) {
  return post_target(ont, *mode, OLT_CALL_IF_MEMORY(129, 2839, 2848));
}

int32_t get_ont_port_downrate(const olt_ont_target *ont, olt_uni_downrate *rates) {
  return flatten(fetch(119, *ont, rates));
}

int32_t set_ont_port_downrate(const olt_ont_target *ont, const olt_uni_downrate *rates) {
  return post_target(ont, *rates, OLT_CALL(118, 3048, 3056));
}

int32_t set_ont_port_basicinfo(const olt_ont_target *ont, const olt_uni_block *info) {
  return post_target(ont, *info, OLT_CALL(132, 3067, 3075));
}

int32_t set_ont_port_description(const olt_ont_target *ont, const olt_uni_block *description) {
  return post_target(ont, *description, OLT_CALL(84, 3085, 3093));
}

int32_t show_ont_port_basicinfo(const olt_ont_target *ont, char name[32]) {
  return fetch_ont_listing(133, ont, name);
}

int32_t set_ont_port_policying(const olt_ont_target *ont, const olt_uni_policing *policing) {
  return post_target(ont, *policing, OLT_CALL(130, 3551, 3559));
}

int32_t get_ont_port_policying(const olt_ont_target *ont, olt_uni_policing *policing) {
  return flatten(fetch(131, *ont, policing));
}
