#include "cli/call/result_text.h"

#include <fmt/format.h>

#include "platform/olthost.h"

namespace olt::cli {

using catalog::Layout;

namespace {

constexpr int32_t kNotBuilt = -1;

std::string status_of_module(uint16_t status, const Layout &layout) {
  if (layout.statuses().empty()) return fmt::format("status {}", status);
  auto found = layout.statuses().find(status);
  return fmt::format("status {} ({}: {})", status, layout.status_source(),
                     found == layout.statuses().end() ? "unknown status" : found->second);
}

std::string reason_of_exchange(int32_t result, const Layout &layout) {
  ResultParts parts = take_apart(result);
  if (result == kNotBuilt) return "the request could not be built";
  if (!parts.transport) return status_of_module(*parts.status, layout);
  if (!parts.status) return *parts.transport;
  return fmt::format("{}, {}", *parts.transport, status_of_module(*parts.status, layout));
}

std::string with_reason(int32_t result, const std::string &reason) {
  return fmt::format("result {} (0x{:08x}): {}", result, static_cast<uint32_t>(result), reason);
}

}  // namespace

ResultParts take_apart(int32_t result) {
  ResultParts parts;
  if (result == kNotBuilt) return parts;
  auto bits = static_cast<uint32_t>(result);
  if (bits > UINT16_MAX) parts.transport = olt_transport_text(result);
  auto status = static_cast<uint16_t>(bits);
  if (status != 0 || !parts.transport) parts.status = status;
  return parts;
}

std::string describe_result(const catalog::Operation &operation, int32_t result, int32_t reason,
                            const Layout &layout) {
  if (reason != result) return with_reason(result, reason_of_exchange(reason, layout));
  const char *minus_one = operation.outcome.minus_one;
  if (result == kNotBuilt && minus_one != nullptr) return with_reason(result, minus_one);
  if (operation.address.sends()) return with_reason(result, reason_of_exchange(result, layout));
  bool is_named = result == -2 && operation.outcome.minus_two != nullptr;
  return with_reason(result, is_named ? operation.outcome.minus_two : "the device failed");
}

std::string describe_result(int32_t result, const Layout &layout) {
  return with_reason(result, reason_of_exchange(result, layout));
}

}  // namespace olt::cli
