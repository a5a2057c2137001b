#include "switch/vlan_list.h"

#include <stddef.h>

namespace olt_switch {

using olt::Word;

static_assert(offsetof(olt_vlan_list, head) == 0 && offsetof(olt_vlan_list, count) == 16);
static_assert(offsetof(olt_vlan_node, next) == 0 && offsetof(olt_vlan_node, vlan_first) == 12 &&
              offsetof(olt_vlan_node, vlan_second) == 14 &&
              offsetof(olt_vlan_node, vlan_descr) == 16 && sizeof(olt_vlan_node) == 48);

void put_elements(void *out, const olt_vlan_list &list, uint32_t element) {
  auto *to = static_cast<Word *>(out);
  const olt_vlan_node *node = list.head;
  for (int32_t i = 0; i < list.count; ++i) {
    const auto *from = reinterpret_cast<const Word *>(&node->vlan_first);
    for (size_t words = element / sizeof(Word); words != 0; --words)
      (to++)->value = (from++)->value;
    node = node->next;
  }
}

int32_t post_vlans(const olt_vlan_list *list, uint32_t element, const olt::Call &call) {
  uint32_t length = wire_length(*list, element);
  auto *block = static_cast<char *>(olt::open_block(length, call));
  if (block != nullptr) put_elements(block, *list, element);
  return olt::post_block(block, length, call);
}

}  // namespace olt_switch
