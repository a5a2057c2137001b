#include "transport/interface_request.h"

namespace olt {

int32_t fetch_interface_listing(uint32_t slot, uint32_t port, char *name, Route route) {
  return fetch_range(route, ListingRequest{.slot = slot, .port = port}, kResultName, name);
}

int32_t post_setting(uint32_t slot, uint32_t port, uint32_t value, Setting setting) {
  uint32_t request[20] = {slot, port};
  request[setting.offset() / 4] = value;
  return request_no_reply(request, sizeof request, setting.route());
}

int32_t ask_setting(uint32_t slot, uint32_t port, Route route, Reply &reply) {
  uint32_t request[20] = {slot, port};
  return ask(request, sizeof request, route, reply);
}

}  // namespace olt
