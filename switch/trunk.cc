#include "oltmgmt.h"
#include "switch/vlan_list.h"
#include "transport/block.h"

using namespace olt;
using namespace olt_switch;

namespace {

struct TrunkRequest {
  uint32_t slot;
  uint32_t port;
  uint32_t trunk_value;
  uint32_t reserved_0c[17];
};
static_assert(sizeof(TrunkRequest) == 80);

constexpr Route trunk(uint8_t message_type) {
  constexpr uint8_t kTimeout = 60;
  return {message_type, kMainModule, kTimeout};
}

/// The allocation is not checked, and the bytes between trunk_value and the list are uninitialized.
int32_t post_trunk(uint32_t slot, uint32_t port, const olt_vlan_list *list, uint32_t trunk_value,
                   const Call &call) {
  uint32_t length = sizeof(TrunkRequest) + wire_length(*list, kVlanElement);
  auto *request = static_cast<TrunkRequest *>(open_block(length, call));
  request->slot = slot;
  request->port = port;
  request->trunk_value = trunk_value;
  put_elements(request + 1, *list, kVlanElement);
  return post_block(request, length, call);
}

}  // namespace

int32_t process_trunk_vlan(uint32_t slot, uint32_t port, const olt_vlan_list *list,
                           uint32_t trunk_value) {
  return post_trunk(slot, port, list, trunk_value, OLT_CALL(trunk(25)));
}

int32_t process_trunk_vlan_untag(uint32_t slot, uint32_t port, const olt_vlan_list *list,
                                 uint32_t trunk_value) {
  return post_trunk(slot, port, list, trunk_value, OLT_CALL(trunk(26)));
}

int32_t process_trunk_vlan_all(uint32_t slot, uint32_t port, const olt_vlan_list *list,
                               uint32_t trunk_value) {
  return post_trunk(slot, port, list, trunk_value, OLT_CALL(trunk(27)));
}

int32_t process_trunk_vlan_untag_all(uint32_t slot, uint32_t port, const olt_vlan_list *list,
                                     uint32_t trunk_value) {
  return post_trunk(slot, port, list, trunk_value, OLT_CALL(trunk(28)));
}
