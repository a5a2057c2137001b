#include "oltmgmt.h"
#include "switch/vlan_list.h"
#include "transport/shapes.h"

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

constexpr uint8_t kTimeout = 60;

/// The allocation is not tested, and what lies between head and list is not cleared.
int32_t post_trunk(uint32_t slot, uint32_t port, const olt_vlan_list *list, uint32_t trunk_value,
                   uint16_t type, const char *operation) {
  CallSite site{operation};
  uint32_t length = sizeof(TrunkRequest) + wire_length(*list, kVlanElement);
  auto *request = static_cast<TrunkRequest *>(open_block(length, site));
  request->slot = slot;
  request->port = port;
  request->trunk_value = trunk_value;
  put_elements(reinterpret_cast<char *>(request + 1), *list, kVlanElement);
  return post_block(request, length, {type, kMainModule, kTimeout}, site);
}

}  // namespace

int32_t process_trunk_vlan(uint32_t slot, uint32_t port, const olt_vlan_list *list,
                           uint32_t trunk_value) {
  return post_trunk(slot, port, list, trunk_value, 25, __func__);
}

int32_t process_trunk_vlan_untag(uint32_t slot, uint32_t port, const olt_vlan_list *list,
                                 uint32_t trunk_value) {
  return post_trunk(slot, port, list, trunk_value, 26, __func__);
}

int32_t process_trunk_vlan_all(uint32_t slot, uint32_t port, const olt_vlan_list *list,
                               uint32_t trunk_value) {
  return post_trunk(slot, port, list, trunk_value, 27, __func__);
}

int32_t process_trunk_vlan_untag_all(uint32_t slot, uint32_t port, const olt_vlan_list *list,
                                     uint32_t trunk_value) {
  return post_trunk(slot, port, list, trunk_value, 28, __func__);
}
