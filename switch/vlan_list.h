/// Requests that carry the caller's VLAN list.
#ifndef OLT_SWITCH_VLAN_LIST_H
#define OLT_SWITCH_VLAN_LIST_H

#include "oltmgmt.h"
#include "transport/block.h"

namespace olt_switch {

/// Bytes sent for a node: its two VLAN values, or these and its description.
inline constexpr uint32_t kVlanElement = 4;
inline constexpr uint32_t kVlanDescrElement = 36;

/// Bytes sent for the list. A negative count wraps around; no node is copied then.
inline uint32_t wire_length(const olt_vlan_list &list, uint32_t element) {
  return static_cast<uint32_t>(list.count) * element;
}

/// Writes one element per node, for as many nodes as the list counts.
void put_elements(void *out, const olt_vlan_list &list, uint32_t element);

/// Sends the list. @return -1 if there is no memory.
int32_t post_vlans(const olt_vlan_list *list, uint32_t element, const olt::Call &call);

}  // namespace olt_switch

#endif
