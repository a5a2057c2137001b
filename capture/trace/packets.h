/// An exchange as two packets of a pcapng file; docs/capture.md has the format.
#ifndef OLT_CAPTURE_TRACE_PACKETS_H
#define OLT_CAPTURE_TRACE_PACKETS_H

#include <stdbool.h>
#include <stdint.h>

struct exchange {
  uint32_t message_type, module;
  const void *request, *reply;
  uint32_t request_length, reply_length;
  uint32_t no_reply, timeout;
  uint32_t result;
  uint16_t status;
  uint64_t began;     ///< nanoseconds since 1970
  uint64_t duration;  ///< nanoseconds
  uint32_t thread;
};

void record_exchange(const struct exchange *exchange, bool with_secrets);

#endif
