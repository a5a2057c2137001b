#include <stddef.h>

#include "oltmgmt.h"
#include "transport/shapes.h"

using namespace olt;

static_assert(sizeof(olt_rstp_bridge) == 33 && sizeof(olt_rstp_port) == 27);
static_assert(sizeof(olt_rstp_brief) == 40 && offsetof(olt_rstp_brief, values) == 8);

namespace {

constexpr uint8_t kRstpModule = 23;

}  // namespace

int32_t get_rstp_config(olt_rstp_bridge *bridge) {
  return fetch(170, bridge);
}

int32_t get_rstp_port_config(olt_rstp_port *port) {
  return fetch_over(171, *port);
}

int32_t set_rstp_config(const olt_rstp_bridge *bridge) {
  return post({172, kMainModule, 50}, *bridge);
}

int32_t set_rstp_port_config(const olt_rstp_port *port) {
  return post({173, kMainModule, 30}, *port);
}

int32_t get_rstp_brief(olt_rstp_brief *brief) {
  return fetch_over({174, kRstpModule}, *brief, brief->values);
}
