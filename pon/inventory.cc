#include <stddef.h>

#include "oltmgmt.h"
#include "transport/interface_request.h"
#include "transport/ont_target.h"
#include "transport/shapes.h"

using namespace olt;

static_assert(sizeof(olt_onu_feature) == 48);

int32_t get_onulist_file_byinteface(uint32_t iface_a, uint32_t iface_b, char name[32]) {
  return fetch_interface_listing(iface_a, iface_b, name, 35);
}

int32_t get_linklist_file_byinteface(uint32_t iface_a, uint32_t iface_b, char name[32]) {
  return fetch_interface_listing(iface_a, iface_b, name, 36);
}

int32_t getonu_ont_basicinforfile(const olt_ont_target *ont, char name[32]) {
  return fetch_ont_listing(47, ont, name);
}

int32_t show_ont_runningconfig(const olt_ont_target *ont, char name[32]) {
  return fetch_ont_listing(48, ont, name);
}

int32_t getonu_ont_opticalfile(const olt_ont_target *ont, char name[32]) {
  return fetch_ont_listing(106, ont, name);
}

/// Copies address and word separately, so that the two bytes between them stay unchanged.
int32_t get_onu_basic_mac_byindex(olt_ont_target *ont) {
  Reply reply;
  if (int32_t result = ask(ont, sizeof *ont, Route(65), reply)) return result;
  take(reply, {offsetof(olt_ont_target, mac), sizeof ont->mac}, &ont->mac);
  ont->mac_word = word_at(reply, offsetof(olt_ont_target, mac_word));
  release_reply(reply);
  return 0;
}

int32_t get_onu_basic_feature_f(uint32_t target_a, uint32_t target_b, uint32_t target_c,
                                olt_onu_feature *feature) {
  olt_ont_target target{.target = {target_a, target_b, target_c}, .target_kind = 1};
  return fetch(38, target, feature);
}
