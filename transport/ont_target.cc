#include "transport/ont_target.h"

#include <stddef.h>
#include <string.h>

#include "oltplatform.h"

namespace olt {

static_assert(sizeof(olt_ont_target) == 88 && offsetof(olt_ont_target, target_kind) == 12 &&
              offsetof(olt_ont_target, mac) == 28 && offsetof(olt_ont_target, mac_word) == 36);

char *open_target(const olt_ont_target *target, const void *tail, uint32_t tail_length,
                  uint32_t length, CallSite site) {
  auto *block = static_cast<char *>(open_block(length, site));
  if (block == nullptr) return nullptr;
  memcpy(block, target, kTargetLength);
  if (tail_length != 0) memcpy(block + kTargetLength, tail, tail_length);
  return block;
}

int32_t post_target(const olt_ont_target *target, const void *tail, uint32_t tail_length,
                    Route route, CallSite site) {
  uint32_t length = kTargetLength + tail_length;
  char *block = open_target(target, tail, tail_length, length, site);
  return block == nullptr ? -1 : post_block(block, length, route, site);
}

int32_t post_target_word(const olt_ont_target *target, uint32_t word, Route route, CallSite site) {
  return post_target(target, &word, sizeof word, route, site);
}

int32_t post_target_if_memory(const olt_ont_target *target, const void *tail, uint32_t tail_length,
                              Route route, CallSite site) {
  uint32_t length = kTargetLength + tail_length;
  char *block = open_target(target, tail, tail_length, length, site);
  if (block != nullptr) return post_block(block, length, route, site);
  ___FREE(nullptr, site.operation, site.release_line);
  return 0;
}

int32_t fetch_row(olt_ont_target *target, void *out, uint8_t length, Route route) {
  Reply reply;
  int32_t result = ask(target, kTargetLength, route, reply);
  if (result != 0) return result;
  take(reply, {0, kTargetLength}, target);
  take(reply, {kTargetLength, length}, out);
  release_reply(reply);
  return 0;
}

}  // namespace olt
