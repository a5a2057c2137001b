/// MAC addresses.
#ifndef OLT_BOX_MAC_H
#define OLT_BOX_MAC_H

#include <array>
#include <cstdint>
#include <string>

namespace olt::box {

using Mac = std::array<uint8_t, 6>;

/// Neither blank nor of a group.
bool is_one_device(const Mac &mac);

/// "02:00:00:00:00:01".
std::string mac_text(const Mac &mac);

}  // namespace olt::box

#endif
