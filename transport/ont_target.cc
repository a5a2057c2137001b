#include "transport/ont_target.h"

#include <stddef.h>
#include <string.h>

namespace olt {

static_assert(sizeof(olt_ont_target) == 88 && offsetof(olt_ont_target, target_kind) == 12 &&
              offsetof(olt_ont_target, mac) == 28 && offsetof(olt_ont_target, mac_word) == 36);

namespace {

/// Inlined into post_target, which most setters use.
OLT_INLINE char *fill_block(const olt_ont_target *ont, const void *tail, uint32_t tail_length,
                            uint32_t length, const Call &call) {
  auto *block = static_cast<char *>(open_block(length, call));
  if (block == nullptr) return nullptr;
  memcpy(block, ont, kTargetLength);
  if (tail_length != 0) memcpy(block + kTargetLength, tail, tail_length);
  return block;
}

}  // namespace

char *open_target(const olt_ont_target *ont, const void *tail, uint32_t tail_length,
                  uint32_t length, const Call &call) {
  return fill_block(ont, tail, tail_length, length, call);
}

int32_t post_target(const olt_ont_target *ont, const void *tail, uint32_t tail_length,
                    const Call &call) {
  uint32_t length = kTargetLength + tail_length;
  char *block = fill_block(ont, tail, tail_length, length, call);
  if (block == nullptr && call.no_memory == NoMemory::kFail) return -1;
  int32_t result = block == nullptr ? 0 : request_no_reply(block, length, call);
  ___FREE(block, call.operation(), call.release_line);
  return result;
}

int32_t post_target_word(const olt_ont_target *ont, uint32_t word, const Call &call) {
  return post_target(ont, &word, sizeof word, call);
}

int32_t fetch_row(olt_ont_target *ont, void *out, uint32_t length, Route route) {
  Reply reply;
  int32_t result = ask(ont, kTargetLength, route, reply);
  if (result != 0) return result;
  take(reply, {0, kTargetLength}, ont);
  memcpy(out, static_cast<const char *>(reply.data) + kTargetLength, length);
  release_reply(reply);
  return 0;
}

}  // namespace olt
