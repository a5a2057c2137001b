#include "cli/result_text.h"

#include <fmt/format.h>

#include "platform/olthost.h"

namespace olt::cli {

namespace {

constexpr int32_t kNotBuilt = -1;

}  // namespace

ResultParts take_apart(int32_t result) {
  ResultParts parts;
  if (result == kNotBuilt) return parts;
  auto bits = static_cast<uint32_t>(result);
  if (bits > UINT16_MAX) parts.transport = olt_transport_text(result);
  parts.status = static_cast<uint16_t>(bits);
  return parts;
}

std::string describe_result(int32_t result) {
  ResultParts parts = take_apart(result);
  std::string reason;
  if (!parts.status) {
    reason = "the request could not be built";
  } else if (!parts.transport) {
    reason = fmt::format("status {}", *parts.status);
  } else if (*parts.status == 0) {
    reason = *parts.transport;
  } else {
    reason = fmt::format("{}, status {}", *parts.transport, *parts.status);
  }
  return fmt::format("result {} (0x{:08x}): {}", result, static_cast<uint32_t>(result), reason);
}

}  // namespace olt::cli
