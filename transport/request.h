/// How every operation talks to the box: one request, its reply, the reply's release.
#ifndef OLT_TRANSPORT_REQUEST_H
#define OLT_TRANSPORT_REQUEST_H

#include <stdint.h>

#include "oltplatform.h"

/// Always inlined: a call would cost more than it saves.
#define OLT_INLINE [[gnu::always_inline]] inline

namespace olt {

inline constexpr uint8_t kMainModule = 2;
inline constexpr uint8_t kDefaultTimeout = 10;

/// Message type, module and time-out in seconds, in one register. Module and time-out are stored as
/// the difference from the common ones, so that most routes are constants of one instruction.
struct Route {
  constexpr Route(uint8_t message_type, uint8_t module = kMainModule,
                  uint8_t timeout = kDefaultTimeout)
      : word(message_type | uint32_t{module} << 16 | uint32_t{timeout} << 24) {
    word ^= kCommon;
  }

  constexpr uint32_t message_type() const { return word & 0xFF; }
  constexpr uint32_t module() const { return (word ^ kCommon) >> 16 & 0xFF; }
  constexpr uint32_t timeout() const { return (word ^ kCommon) >> 24; }

  static constexpr uint32_t kCommon = kMainModule << 16 | kDefaultTimeout << 24;
  uint32_t word;
};

/// A reply. The record at data belongs to the platform and may start at any address.
struct Reply {
  void *data = nullptr;
  uint32_t handle = 0;
  uint16_t length = 0;
  uint16_t status = 0;
};

// Inlined into each shape that sends. A destination is a Route or a Call.

/// Sends a request that needs no reply record. @return transport result | status.
template <typename Destination>
OLT_INLINE int32_t request_no_reply(const void *request, uint32_t length, const Destination &to) {
  uint16_t status = 0;
  int32_t result = platmsg_syn_result(to.message_type(), to.module(), const_cast<void *>(request),
                                      length, nullptr, nullptr, nullptr, &status, 1, to.timeout());
  return result | status;
}

/// Sends a request for a reply record. Fields of reply that the platform does not set stay
/// unchanged.
/// @return the transport result; the status is in reply.
template <typename Destination>
OLT_INLINE int32_t request_with_reply(const void *request, uint32_t length, const Destination &to,
                                      Reply &reply) {
  return platmsg_syn_result(to.message_type(), to.module(), const_cast<void *>(request), length,
                            &reply.data, &reply.length, &reply.handle, &reply.status, 0,
                            to.timeout());
}

inline void release_reply(const Reply &reply) {
  IPC_Free(reply.handle);
}

}  // namespace olt

#endif
