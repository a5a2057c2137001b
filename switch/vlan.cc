#include <stddef.h>
#include <string.h>

#include "oltmgmt.h"
#include "switch/vlan_list.h"
#include "transport/block.h"
#include "transport/interface_request.h"

using namespace olt;
using namespace olt_switch;

namespace {

constexpr Route kQuery = 23;
enum QueryKind : uint32_t { kByInterface, kByList, kByDescription, kAllVlans };

struct VlanQuery {
  uint32_t query_kind;
  uint32_t slot;
  uint32_t port;
  uint32_t reserved_0c;
  char descr[64];
};
static_assert(sizeof(VlanQuery) == 80 && offsetof(VlanQuery, descr) == 16);

}  // namespace

int32_t add_vlan_list(const olt_vlan_list *list) {
  return post_vlans(list, kVlanElement, OLT_CALL(19));
}

int32_t delete_vlan_list(const olt_vlan_list *list) {
  return post_vlans(list, kVlanElement, OLT_CALL(20));
}

int32_t add_vlan_descr_list(const olt_vlan_list *list) {
  return post_vlans(list, kVlanDescrElement, OLT_CALL(21));
}

int32_t delete_vlan_descr_list(const olt_vlan_list *list) {
  return post_vlans(list, kVlanElement, OLT_CALL(22));
}

int32_t get_vlan_interface_file_byinteface(uint32_t slot, uint32_t port, char name[32]) {
  static_assert(kByInterface == 0, "the word before the interface is zero");
  return fetch_interface_listing(slot, port, name, kQuery);
}

/// The allocation is not checked, and the bytes between kind and list are uninitialized.
int32_t get_vlan_information_file_bylist(const olt_vlan_list *list, char name[32]) {
  const Call &call = OLT_CALL(kQuery);
  uint32_t length = sizeof(VlanQuery) + wire_length(*list, kVlanElement);
  auto *query = static_cast<VlanQuery *>(open_block(length, call));
  query->query_kind = kByList;
  put_elements(query + 1, *list, kVlanElement);
  return fetch_block(query, length, name, kResultName, call);
}

/// The description is copied without a length check.
int32_t get_vlan_information_file_bydescprtion(const char *description, char name[32]) {
  VlanQuery query{.query_kind = kByDescription};
  strcpy(query.descr, description);
  return fetch_range(kQuery, query, kResultName, name);
}

int32_t get_vlan_all(char name[32]) {
  return fetch_range(kQuery, VlanQuery{.query_kind = kAllVlans}, kResultName, name);
}
