/// MAC addresses.
#ifndef OLT_BASE_MAC_H
#define OLT_BASE_MAC_H

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace olt {

using Mac = std::array<uint8_t, 6>;

/// Neither all zeros nor a group address.
bool is_unicast(const Mac &mac);

/// "02:00:00:00:00:01".
std::string mac_text(std::span<const uint8_t, 6> mac);
/// The address in that form, in upper or lower case; nothing when the text is anything else.
std::optional<Mac> to_mac(std::string_view text);

}  // namespace olt

#endif
