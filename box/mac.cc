#include "box/mac.h"

#include <fmt/format.h>

namespace olt::box {

bool is_one_device(const Mac &mac) {
  return (mac[0] & 1) == 0 && mac != Mac{};
}

std::string mac_text(const Mac &mac) {
  return fmt::format("{:02x}:{:02x}:{:02x}:{:02x}:{:02x}:{:02x}", mac[0], mac[1], mac[2], mac[3],
                     mac[4], mac[5]);
}

}  // namespace olt::box
