#include "transport/shapes.h"

#include <string.h>

#include "oltplatform.h"

namespace olt {

int32_t post_value(Route route, uint32_t value) {
  return request_no_reply(route, &value, sizeof value);
}

int32_t fetch(Route route, const void *request, uint32_t length, Range range, void *out) {
  Reply reply;
  int32_t result = request_with_reply(route, request, length, reply) | reply.status;
  if (result != 0) return result;
  memcpy(out, static_cast<const char *>(reply.data) + range.offset, range.length);
  release_reply(reply);
  return 0;
}

int32_t fetch_copy(CallSite site, Route route, const void *request, uint32_t length, void **answer,
                   uint32_t *answer_length) {
  Reply reply;
  int32_t result = request_with_reply(route, request, length, reply) | reply.status;
  if (result != 0) return result;
  *answer_length = reply.length;
  *answer = ___MALLOC(reply.length, site.operation, site.line);
  if (reply.length != 0) memcpy(*answer, reply.data, reply.length);
  release_reply(reply);
  return 0;
}

}  // namespace olt
