/// The one way in which operations talk to the box: a single request, its answer, its release.
#ifndef OLT_TRANSPORT_REQUEST_H
#define OLT_TRANSPORT_REQUEST_H

#include <stdint.h>

namespace olt {

inline constexpr uint8_t kMainModule = 2;
inline constexpr uint8_t kDefaultTimeout = 10;

/// What a request asks for, of whom, and for how many seconds the caller waits. Passed in one
/// register.
struct Route {
  constexpr Route(uint16_t message_type, uint8_t destination = kMainModule,
                  uint8_t timeout_seconds = kDefaultTimeout)
      : type(message_type), module(destination), timeout(timeout_seconds) {}

  uint16_t type;
  uint8_t module;
  uint8_t timeout;
};

/// An answer. The record behind data is the platform's and may lie at any address.
struct Reply {
  void *data = nullptr;
  uint32_t handle = 0;
  uint16_t length = 0;
  uint16_t status = 0;
};

/// Sends a request of which only the acceptance matters. @return transport result | status.
int32_t request_no_reply(const void *request, uint32_t length, Route route);

/// Sends a request for a reply record. What the platform does not write in reply stays as it was.
/// @return the transport result; the status is in the reply.
int32_t request_with_reply(const void *request, uint32_t length, Route route, Reply &reply);

void release_reply(const Reply &reply);

}  // namespace olt

#endif
