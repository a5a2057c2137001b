#include "transport/shapes.h"

namespace olt {

int32_t post(const void *request, uint32_t length, Route route) {
  return request_no_reply(request, length, route);
}

int32_t post_value(uint32_t value, Route route) {
  return post(&value, sizeof value, route);
}

int32_t fetch(const void *request, void *out, Extent extent, Route route) {
  Reply reply;
  int32_t result = ask(request, extent.sent(), route, reply);
  if (result != 0) return result;
  take(reply, extent.taken(), out);
  release_reply(reply);
  return 0;
}

}  // namespace olt
