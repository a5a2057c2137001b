/// The blocks of a pcapng file of exchanges; docs/capture.md has the format.
#ifndef OLT_CAPTURE_TRACE_PACKETS_H
#define OLT_CAPTURE_TRACE_PACKETS_H

#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

struct exchange {  // NOLINT(readability-identifier-naming): a name of C
  uint32_t message_type, module;
  const void *request, *reply;
  uint32_t request_length, reply_length;
  uint32_t no_reply, timeout;
  uint32_t result;
  uint16_t status;
  uint64_t began;     ///< nanoseconds since 1970
  uint64_t duration;  ///< nanoseconds
  uint32_t run;       ///< seconds since 1970 at the first exchange
  uint32_t process, thread;
  uint32_t number;     ///< counts from 1
  uint32_t lost;       ///< exchanges just before this one that are not recorded
  uint32_t interface;  ///< counts from 0 in a section
};

static const uint32_t kPacketBlock = 6;

/// Write a block; program and description are at most 63 bytes long, the name at most 79, and the
/// description may be null. @return its length
uint32_t put_section(uint8_t *at, const char *program);
uint32_t put_interface(uint8_t *at, const char *name, const char *description);

/// The length of the packet of a record.
uint32_t packet_size(uint32_t record_length);

/// Writes both packets of an exchange.
void put_packets(uint8_t *at, const struct exchange *exchange, bool with_secrets);

#ifdef __cplusplus
}
#endif

#endif
