/// Requests made of the caller's VLAN list.
#ifndef OLT_SWITCH_VLAN_LIST_H
#define OLT_SWITCH_VLAN_LIST_H

#include "oltmgmt.h"
#include "transport/block.h"

namespace olt_switch {

/// On the wire a node is its two VLAN values, or those and the description behind them.
inline constexpr uint32_t kVlanElement = 4;
inline constexpr uint32_t kVlanDescrElement = 36;

/// Bytes that the list takes. A negative count wraps around, as the walk then copies nothing.
inline uint32_t wire_length(const olt_vlan_list &list, uint32_t element) {
  return static_cast<uint32_t>(list.count) * element;
}

/// Writes one element per node, for as many nodes as the list counts.
void put_elements(void *out, const olt_vlan_list &list, uint32_t element);

/// Sends the list. @return -1 when there is no memory.
int32_t post_vlans(const olt_vlan_list *list, uint32_t element, const olt::Call &call);

}  // namespace olt_switch

#endif
