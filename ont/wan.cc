#include "oltmgmt.h"
#include "transport/block.h"
#include "transport/ont_target.h"

using namespace olt;

static_assert(sizeof(olt_wan_connection) == 125);

int32_t deal_wan_connection(const olt_ont_target *ont, const olt_wan_connection *wan_connection) {
  return post_target(ont, *wan_connection, OLT_CALL_IF_MEMORY(145));
}

int32_t show_ont_wanconnection(const olt_ont_target *ont, char name[32]) {
  return fetch_ont_listing(146, ont, name);
}

int32_t do_ont_configuration(const olt_ont_target *ont, uint32_t config_action) {
  return post_target_word(ont, config_action, OLT_CALL(147));
}
