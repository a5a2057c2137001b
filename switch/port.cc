#include <stddef.h>

#include "oltmgmt.h"
#include "transport/shapes.h"

using namespace olt;

static_assert(sizeof(olt_port_attributes) == 80 &&
              offsetof(olt_port_attributes, sfp_module) == 12 &&
              offsetof(olt_port_attributes, vlanmode_second) == 28 &&
              offsetof(olt_port_attributes, flowcontrol) == 40 &&
              offsetof(olt_port_attributes, ratecontrol_first) == 52 &&
              offsetof(olt_port_attributes, link_state) == 64 &&
              offsetof(olt_port_attributes, max_link) == 76);

namespace {

using PortField = uint32_t olt_port_attributes::*;

/// Sets one attribute of a port; everything else in the request is zero.
[[gnu::noinline]] int32_t post_port(uint32_t slot, uint32_t port, uint32_t value, PortField field,
                                    Route route) {
  olt_port_attributes request{.slot = slot, .port = port};
  request.*field = value;
  return post(route, request);
}

/// Sets two attributes of a port; the rest of the request is left as it happens to be.
[[gnu::noinline]] int32_t post_port_uncleared(uint32_t slot, uint32_t port, uint32_t first,
                                              uint32_t second, PortField first_field,
                                              PortField second_field, Route route) {
  olt_port_attributes request;  // NOLINT(cppcoreguidelines-pro-type-member-init)
  request.slot = slot;
  request.port = port;
  request.*first_field = first;
  request.*second_field = second;
  return post(route, request);
}

/// Reads one attribute of a port. The reply is not released.
[[gnu::noinline]] int32_t fetch_port(uint32_t slot, uint32_t port, uint32_t *out, uint8_t offset,
                                     Route route) {
  olt_port_attributes request{.slot = slot, .port = port};
  return fetch_keep(&request, out, {sizeof request, {offset, sizeof *out}}, route);
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
  return post_port(slot, port, sfp_module, &olt_port_attributes::sfp_module, 13);
}

int32_t set_port_enable(uint32_t slot, uint32_t port, uint32_t port_enable) {
  return post_port(slot, port, port_enable, &olt_port_attributes::port_enable, 14);
}

int32_t get_port_enable(uint32_t slot, uint32_t port, uint32_t *port_enable) {
  return fetch_port(slot, port, port_enable, offsetof(olt_port_attributes, port_enable), 15);
}

int32_t get_port_link_state(uint32_t slot, uint32_t port, uint32_t *link_state) {
  return fetch_port(slot, port, link_state, offsetof(olt_port_attributes, link_state), 16);
}

int32_t get_port_link_duplex(uint32_t slot, uint32_t port, uint32_t *link_duplex) {
  return fetch_port(slot, port, link_duplex, offsetof(olt_port_attributes, link_duplex), 17);
}

int32_t get_port_link_speed(uint32_t slot, uint32_t port, uint32_t *link_speed) {
  return fetch_port(slot, port, link_speed, offsetof(olt_port_attributes, link_speed), 18);
}

/// On the wire the second value comes before the first.
int32_t Set_port_vlanmode(uint32_t slot, uint32_t port, uint32_t first, uint32_t second) {
  return post({24, kMainModule, 60},
              olt_port_attributes{
                  .slot = slot, .port = port, .vlanmode_second = second, .vlanmode_first = first});
}

int32_t set_olt_port_ratecontrol(uint32_t slot, uint32_t port, uint32_t first, uint32_t second) {
  return post_port_uncleared(slot, port, first, second, &olt_port_attributes::ratecontrol_first,
                             &olt_port_attributes::ratecontrol_second, 66);
}

int32_t stp_set_port_rstp_state(uint32_t slot, uint32_t port, uint32_t rstp_state) {
  return post_port_uncleared(slot, port, rstp_state, rstp_state, &olt_port_attributes::rstp_state,
                             &olt_port_attributes::rstp_state, 67);
}

int32_t set_olt_port_ingressfilter(uint32_t slot, uint32_t port, uint32_t first, uint32_t second) {
  return post_port_uncleared(slot, port, first, second, &olt_port_attributes::ingressfilter_first,
                             &olt_port_attributes::ingressfilter_second, 68);
}

int32_t set_olt_port_flowcontrol(uint32_t slot, uint32_t port, uint32_t flowcontrol) {
  return post_port_uncleared(slot, port, flowcontrol, flowcontrol,
                             &olt_port_attributes::flowcontrol, &olt_port_attributes::flowcontrol,
                             69);
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
  return post_port(slot, port, max_link, &olt_port_attributes::max_link, 102);
}

int32_t Set_upport_agg(uint32_t upport_agg) {
  return post(34, UplinkAggregation{.upport_agg = upport_agg});
}

int32_t get_upport_agg(uint32_t *upport_agg) {
  return fetch_range(74, Range{offsetof(UplinkAggregation, upport_agg), 4}, upport_agg);
}
