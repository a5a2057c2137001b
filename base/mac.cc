#include "base/mac.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace olt {

bool is_unicast(const Mac &mac) {
  return (mac[0] & 1) == 0 && mac != Mac{};
}

std::string mac_text(std::span<const uint8_t, 6> mac) {
  return fmt::format("{:02x}:{:02x}:{:02x}:{:02x}:{:02x}:{:02x}", mac[0], mac[1], mac[2], mac[3],
                     mac[4], mac[5]);
}

std::optional<Mac> to_mac(std::string_view text) {
  constexpr size_t kLength = 17;
  if (text.size() != kLength) return std::nullopt;
  std::string digits(text);
  for (size_t at = 2; at < kLength; at += 3) {
    if (std::exchange(digits[at], ' ') != ':') return std::nullopt;
  }
  std::optional<Bytes> bytes = from_hex(digits);
  if (!bytes || bytes->size() != sizeof(Mac)) return std::nullopt;
  Mac mac;
  std::copy(bytes->begin(), bytes->end(), mac.begin());
  return mac;
}

}  // namespace olt
