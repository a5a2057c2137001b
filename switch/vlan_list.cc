#include "switch/vlan_list.h"

#include <stddef.h>
#include <string.h>

namespace olt_switch {

static_assert(offsetof(olt_vlan_list, head) == 0 && offsetof(olt_vlan_list, count) == 16);
static_assert(offsetof(olt_vlan_node, next) == 0 && offsetof(olt_vlan_node, vlan_first) == 12 &&
              offsetof(olt_vlan_node, vlan_second) == 14 &&
              offsetof(olt_vlan_node, vlan_descr) == 16 && sizeof(olt_vlan_node) == 48);

void put_elements(char *out, const olt_vlan_list &list, uint32_t element) {
  const olt_vlan_node *node = list.head;
  for (int32_t i = 0; i < list.count; ++i) {
    memcpy(out, reinterpret_cast<const char *>(node) + offsetof(olt_vlan_node, vlan_first),
           element);
    out += element;
    node = node->next;
  }
}

int32_t post_vlans(const olt_vlan_list *list, uint32_t element, olt::Route route,
                   const char *operation) {
  olt::CallSite site{operation};
  uint32_t length = wire_length(*list, element);
  auto *block = static_cast<char *>(olt::open_block(length, site));
  if (block == nullptr) return -1;
  put_elements(block, *list, element);
  return olt::post_block(block, length, route, site);
}

}  // namespace olt_switch
