// The platform at no cost: one block for every allocation, one reply for every exchange.
#include <array>
#include <cstddef>
#include <cstdint>

#include "oltplatform.h"

namespace {

constexpr std::size_t kLargestBlock = 1U << 20;
constexpr uint16_t kReplyLength = 80;

alignas(64) std::array<char, kLargestBlock> block;
alignas(64) std::array<char, kReplyLength> reply_record;

}  // namespace

int32_t platmsg_syn_result(uint32_t /*message_type*/, uint32_t /*module*/, void * /*request*/,
                           uint32_t /*request_length*/, void **reply, uint16_t *reply_length,
                           uint32_t *reply_handle, uint16_t *status, uint32_t no_reply,
                           uint32_t /*timeout*/) {
  *status = 0;
  if (no_reply == 0) {
    *reply = reply_record.data();
    *reply_length = kReplyLength;
    *reply_handle = 1;
  }
  return 0;
}

void IPC_Free(uint32_t /*reply_handle*/) {}

void *___MALLOC(uint32_t size, const char * /*tag*/, int /*line*/) {
  return size <= kLargestBlock ? block.data() : nullptr;
}

void ___FREE(void * /*block*/, const char * /*tag*/, int /*line*/) {}

void log_log(int /*level*/, const char * /*tag*/, int /*line*/, const char * /*message*/) {}
