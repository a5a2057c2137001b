#include "oltmgmt.h"
#include "switch/vlan_list.h"
#include "transport/block.h"

using namespace olt;
using namespace olt_switch;

static_assert(sizeof(olt_igmpproxy) == 24);

namespace {

constexpr uint8_t kReadTimeout = 20;

}  // namespace

int32_t add_muticastvlan_list(const olt_vlan_list *list) {
  return post_vlans(list, kVlanElement, OLT_CALL(149));
}

int32_t delete_muticastvlan_list(const olt_vlan_list *list) {
  return post_vlans(list, kVlanElement, OLT_CALL(150));
}

int32_t get_igmpproxy_config(olt_igmpproxy *config) {
  return fetch({151, kMainModule, kReadTimeout}, config);
}

int32_t set_igmpproxy_config(const olt_igmpproxy *config) {
  return post(152, *config);
}

int32_t get_igmpproxy_config_all(void **dump) {
  const Call &call = OLT_CALL({153, kMainModule, kReadTimeout});
  Reply reply;
  if (int32_t result = ask(nullptr, 0, call, reply)) return result;
  return hand_over(reply, reply.length, dump, call);
}
