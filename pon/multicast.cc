#include "oltmgmt.h"
#include "transport/block.h"
#include "transport/ont_target.h"

using namespace olt;

static_assert(sizeof(olt_uni_strip) == 34);

int32_t get_ont_port_muticastgrounp(const olt_ont_target *ont, uint32_t *value) {
  return flatten(fetch(120, *ont, value));
}

int32_t set_ont_port_muticastgrounp(const olt_ont_target *ont, uint32_t value) {
  return post_target_word(ont, value, OLT_CALL(121));
}

int32_t show_ont_port_muticastvlan(const olt_ont_target *ont, char name[32]) {
  return fetch_ont_listing(122, ont, name);
}

int32_t clear_ont_port_muticastvlan(const olt_ont_target *ont) {
  return post(123, *ont);
}

int32_t add_ont_port_muticastvlan(const olt_ont_target *ont, uint32_t n, const uint16_t *vlans) {
  return post_target(ont, vlans, n * uint32_t{sizeof *vlans}, OLT_CALL_IF_MEMORY(124));
}

int32_t delete_ont_port_muticastvlan(const olt_ont_target *ont, uint32_t n, const uint16_t *vlans) {
  return post_target(ont, vlans, n * uint32_t{sizeof *vlans}, OLT_CALL_IF_MEMORY(125));
}

int32_t show_ont_port_muticaststrip(const olt_ont_target *ont, char name[32]) {
  return fetch_ont_listing(126, ont, name);
}

int32_t set_ont_port_muticastrip(const olt_ont_target *ont, const olt_uni_strip *strip) {
  return post_target(ont, *strip, OLT_CALL(127));
}

int32_t show_ont_muticast_group(const olt_ont_target *ont, char name[32]) {
  return fetch_ont_listing(148, ont, name);
}

int32_t set_ont_fastleave(const olt_ont_target *ont, uint32_t value) {
  return post_target_word(ont, value, OLT_CALL(154));
}
