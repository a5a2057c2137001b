#include "idle_port.h"

#include <oltmgmt.h>

enum idle_port_result switch_off_idle_port(uint32_t slot, uint32_t port) {
  uint32_t link_state = 0;
  if (get_port_link_state(slot, port, &link_state) != 0) return IDLE_PORT_FAILED;
  if (link_state != 0) return IDLE_PORT_IN_USE;
  if (set_port_enable(slot, port, 0) != 0) return IDLE_PORT_FAILED;
  return save_system_config() == 0 ? IDLE_PORT_OFF : IDLE_PORT_FAILED;
}
