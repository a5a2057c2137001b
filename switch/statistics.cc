#include <stddef.h>

#include "oltmgmt.h"
#include "transport/interface_request.h"

using namespace olt;

namespace {

/// Unlike in listings, slot and port are the first two words. No setting follows.
int32_t post_clear(uint8_t message_type, uint32_t slot, uint32_t port) {
  return post_setting(slot, port, 0, {message_type, offsetof(olt_port_attributes, reserved_08)});
}

}  // namespace

int32_t get_statics_file_by_interface(uint32_t slot, uint32_t port, char name[32]) {
  return fetch_interface_listing(slot, port, name, 29);
}

int32_t clear_statics_file_by_interface(uint32_t slot, uint32_t port) {
  return post_clear(30, slot, port);
}

int32_t get_dynmac_file_by_interface(uint32_t slot, uint32_t port, uint32_t dynmac_arg,
                                     char name[32]) {
  return fetch_range(31, ListingRequest{.slot = slot, .port = port, .argument = dynmac_arg},
                     kResultName, name);
}

int32_t clear_dynmac_file_by_interface(uint32_t slot, uint32_t port) {
  return post_clear(32, slot, port);
}
