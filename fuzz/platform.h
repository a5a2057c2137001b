/// The platform's message service in the place of its own: nothing is sent, every request is
/// remembered, and every answer is the same.
#ifndef OLT_FUZZ_PLATFORM_H
#define OLT_FUZZ_PLATFORM_H

#include <cstdint>
#include <span>
#include <vector>

#include "platform/olthost.h"

namespace olt::fuzz {

struct Request {
  uint32_t type;
  uint32_t module;
  std::vector<uint8_t> bytes;

  bool operator==(const Request &) const = default;
};

/// From now on every request is answered so. A reply comes with status 0 only; zeros follow it.
void answer_with(uint16_t status, std::span<const uint8_t> reply);

/// The requests since the last call.
std::vector<Request> take_requests();

/// The exchange that was made last.
const olt_exchange &last_exchange();

}  // namespace olt::fuzz

#endif
