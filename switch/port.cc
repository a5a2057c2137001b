#include <stddef.h>

#include "oltmgmt.h"
#include "transport/interface_request.h"

using namespace olt;

static_assert(sizeof(olt_port_attributes) == 80 &&
              offsetof(olt_port_attributes, sfp_module) == 12 &&
              offsetof(olt_port_attributes, vlanmode_second) == 28 &&
              offsetof(olt_port_attributes, flowcontrol) == 40 &&
              offsetof(olt_port_attributes, ratecontrol_first) == 52 &&
              offsetof(olt_port_attributes, link_state) == 64 &&
              offsetof(olt_port_attributes, max_link) == 76);

namespace {

/// Reads one attribute of a port. The reply is not released.
int32_t fetch_keep(uint32_t slot, uint32_t port, uint32_t *out, Setting setting) {
  Reply reply;
  int32_t result = ask_setting(slot, port, setting.route(), reply);
  if (result == 0) *out = word_at(reply, setting.offset());
  return result;
}

bool names_port(const olt_port_attributes &record, uint32_t first, uint32_t last) {
  return record.slot == 1 && record.port >= first && record.port <= last;
}

struct UplinkAggregation {
  uint32_t reserved_00[2];
  uint32_t upport_agg;
  uint32_t reserved_0c[5];
};
static_assert(sizeof(UplinkAggregation) == 32);

}  // namespace

int32_t set_uplink_sfp_module(uint32_t slot, uint32_t port, uint32_t sfp_module) {
  return post_setting(slot, port, sfp_module, {13, offsetof(olt_port_attributes, sfp_module)});
}

int32_t set_port_enable(uint32_t slot, uint32_t port, uint32_t port_enable) {
  return post_setting(slot, port, port_enable, {14, offsetof(olt_port_attributes, port_enable)});
}

int32_t get_port_enable(uint32_t slot, uint32_t port, uint32_t *port_enable) {
  return fetch_keep(slot, port, port_enable, {15, offsetof(olt_port_attributes, port_enable)});
}

int32_t get_port_link_state(uint32_t slot, uint32_t port, uint32_t *link_state) {
  return fetch_keep(slot, port, link_state, {16, offsetof(olt_port_attributes, link_state)});
}

int32_t get_port_link_duplex(uint32_t slot, uint32_t port, uint32_t *link_duplex) {
  return fetch_keep(slot, port, link_duplex, {17, offsetof(olt_port_attributes, link_duplex)});
}

int32_t get_port_link_speed(uint32_t slot, uint32_t port, uint32_t *link_speed) {
  return fetch_keep(slot, port, link_speed, {18, offsetof(olt_port_attributes, link_speed)});
}

/// In the request, the second value comes before the first.
int32_t Set_port_vlanmode(uint32_t slot, uint32_t port, uint32_t first, uint32_t second) {
  return post({24, kMainModule, 60},
              olt_port_attributes{
                  .slot = slot, .port = port, .vlanmode_second = second, .vlanmode_first = first});
}

// The next four leave the rest of the request uninitialized.

int32_t set_olt_port_ratecontrol(uint32_t slot, uint32_t port, uint32_t first, uint32_t second) {
  olt_port_attributes request;
  request.slot = slot;
  request.port = port;
  request.ratecontrol_first = first;
  request.ratecontrol_second = second;
  return post(66, request);
}

int32_t stp_set_port_rstp_state(uint32_t slot, uint32_t port, uint32_t rstp_state) {
  olt_port_attributes request;
  request.slot = slot;
  request.port = port;
  request.rstp_state = rstp_state;
  return post(67, request);
}

int32_t set_olt_port_ingressfilter(uint32_t slot, uint32_t port, uint32_t first, uint32_t second) {
  olt_port_attributes request;
  request.slot = slot;
  request.port = port;
  request.ingressfilter_first = first;
  request.ingressfilter_second = second;
  return post(68, request);
}

int32_t set_olt_port_flowcontrol(uint32_t slot, uint32_t port, uint32_t flowcontrol) {
  olt_port_attributes request;
  request.slot = slot;
  request.port = port;
  request.flowcontrol = flowcontrol;
  return post(69, request);
}

int32_t get_snmp_olt_port_basic_info(olt_port_attributes *record) {
  return names_port(*record, 1, 4) ? fetch_over(70, *record) : -1;
}

int32_t set_snmp_olt_port_basic_info(const olt_port_attributes *record) {
  return names_port(*record, 1, 4) ? post(71, *record) : -1;
}

int32_t get_snmp_olt_port_status(olt_port_attributes *record) {
  return names_port(*record, 3, 4) ? fetch_over(72, *record) : -1;
}

int32_t process_olt_port_mac(const olt_port_mac *record) {
  return post(55, *record);
}

int32_t set_oltport_maxlink(uint32_t slot, uint32_t port, uint32_t max_link) {
  return post_setting(slot, port, max_link, {102, offsetof(olt_port_attributes, max_link)});
}

int32_t Set_upport_agg(uint32_t upport_agg) {
  return post(34, UplinkAggregation{.upport_agg = upport_agg});
}

int32_t get_upport_agg(uint32_t *upport_agg) {
  return fetch_range(74, Range{offsetof(UplinkAggregation, upport_agg), 4}, upport_agg);
}
