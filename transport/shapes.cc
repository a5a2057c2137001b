#include "transport/shapes.h"

#include <string.h>

#include "oltplatform.h"

namespace olt {

int32_t post_value(uint32_t value, Route route) {
  return request_no_reply(&value, sizeof value, route);
}

int32_t ask(const void *request, uint32_t length, Route route, Reply &reply) {
  return request_with_reply(request, length, route, reply) | reply.status;
}

void take(const Reply &reply, Range range, void *out) {
  memcpy(out, static_cast<const char *>(reply.data) + range.offset, range.length);
}

uint32_t word_at(const Reply &reply, uint32_t offset) {
  uint32_t word = 0;
  memcpy(&word, static_cast<const char *>(reply.data) + offset, sizeof word);
  return word;
}

int32_t fetch_keep(const void *request, void *out, Extent extent, Route route) {
  Reply reply;
  int32_t result = ask(request, extent.sent, route, reply);
  if (result == 0) take(reply, extent.taken, out);
  return result;
}

int32_t fetch(const void *request, void *out, Extent extent, Route route) {
  Reply reply;
  int32_t result = ask(request, extent.sent, route, reply);
  if (result != 0) return result;
  take(reply, extent.taken, out);
  release_reply(reply);
  return 0;
}

int32_t fetch_copy(const void *request, uint32_t length, void **answer, uint32_t *answer_length,
                   const char *operation, Route route) {
  Reply reply;
  int32_t result = ask(request, length, route, reply);
  if (result != 0) return result;
  *answer_length = reply.length;
  *answer = ___MALLOC(reply.length, operation, 0);
  if (reply.length != 0) memcpy(*answer, reply.data, reply.length);
  release_reply(reply);
  return 0;
}

int32_t hand_over(const Reply &reply, uint32_t length, void **out, const char *operation) {
  *out = ___MALLOC(length, operation, 0);
  if (*out != nullptr && length != 0) memcpy(*out, reply.data, length);
  release_reply(reply);
  return 0;
}

void *open_block(uint32_t length, CallSite site) {
  return ___MALLOC(length, site.operation, site.allocation_line);
}

int32_t post_block(void *block, uint32_t length, Route route, CallSite site) {
  int32_t result = request_no_reply(block, length, route);
  ___FREE(block, site.operation, site.release_line);
  return result;
}

int32_t ask_block(void *block, uint32_t length, Route route, CallSite site, Reply &reply) {
  int32_t result = ask(block, length, route, reply);
  ___FREE(block, site.operation, site.release_line);
  return result;
}

void log_no_memory(const char *message, int line, CallSite site) {
  constexpr int kLevel = 3;
  log_log(kLevel, site.operation, line, message);
}

}  // namespace olt
