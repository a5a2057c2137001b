/// Replaces the platform's message service: sends nothing, records every request, and always gives
/// the same answer.
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

/// The answer to every request from now on. A reply comes with status 0 only; zeros follow it.
void answer_with(uint16_t status, std::span<const uint8_t> reply);

/// The requests since the last call.
std::vector<Request> take_requests();

/// The latest exchange.
const olt_exchange &last_exchange();

}  // namespace olt::fuzz

#endif
