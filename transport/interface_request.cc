#include "transport/interface_request.h"

namespace olt {

int32_t fetch_interface_listing(uint32_t slot, uint32_t port, char *name, Route route) {
  return fetch_range(route, InterfaceRequest{.slot = slot, .port = port}, kResultName, name);
}

}  // namespace olt
