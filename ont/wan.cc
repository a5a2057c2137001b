#include "oltmgmt.h"
#include "transport/block.h"
#include "transport/ont_target.h"

using namespace olt;

static_assert(sizeof(olt_wan_connection) == 125);

int32_t deal_wan_connection(const olt_ont_target *target,
                            const olt_wan_connection *wan_connection) {
  return post_target(target, *wan_connection, kCallIfMemory<NamedCall(145, __func__)>);
}

int32_t show_ont_wanconnection(const olt_ont_target *target, char name[32]) {
  return fetch_ont_listing(146, target, name);
}

int32_t do_ont_configuration(const olt_ont_target *target, uint32_t config_action) {
  return post_target_word(target, config_action, kCall<NamedCall(147, __func__)>);
}
