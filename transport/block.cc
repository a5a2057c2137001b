#include "transport/block.h"

#include <string.h>

namespace olt {

int32_t post_block(void *block, uint32_t length, const Call &call) {
  if (block == nullptr) return -1;
  int32_t result = request_no_reply(block, length, call);
  ___FREE(block, call.operation(), call.release_line);
  return result;
}

int32_t fetch_block(void *block, uint32_t length, void *out, Range range, const Call &call) {
  Reply reply;
  int32_t result = ask(block, length, call, reply);
  ___FREE(block, call.operation(), call.release_line);
  if (result != 0) return result;
  take(reply, range, out);
  release_reply(reply);
  return 0;
}

int32_t log_no_memory(const char *message, const Call &call) {
  constexpr int kLevel = 3;
  constexpr int kLinesBelow = 4;
  log_log(kLevel, call.operation(), call.allocation_line + kLinesBelow, message);
  return -1;
}

int32_t fetch_copy(const void *request, uint32_t length, void **answer, uint32_t *answer_length,
                   const Call &call) {
  Reply reply;
  int32_t result = ask(request, length, call, reply);
  if (result != 0) return result;
  *answer_length = reply.length;
  *answer = open_block(reply.length, call);
  if (reply.length != 0) memcpy(*answer, reply.data, reply.length);
  release_reply(reply);
  return 0;
}

int32_t hand_over(const Reply &reply, uint32_t length, void **out, const Call &call) {
  *out = open_block(length, call);
  if (*out != nullptr && length != 0) memcpy(*out, reply.data, length);
  release_reply(reply);
  return 0;
}

}  // namespace olt
