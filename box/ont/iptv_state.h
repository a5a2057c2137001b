/// IPTV profiles with their channels, and channels of single users.
#ifndef OLT_BOX_ONT_IPTV_STATE_H
#define OLT_BOX_ONT_IPTV_STATE_H

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>

#include "base/mac.h"
#include "box/wire/records.h"

namespace olt::box {

using ChannelSettings = std::array<uint8_t, sizeof(IptvChannelRow::settings)>;

/// A channel of a single user. The box does not interpret the values a to d.
struct UserChannel {
  Mac user;
  uint32_t a;
  uint16_t b;
  uint16_t c;
  uint32_t d;

  bool operator<(const UserChannel &other) const {
    return std::tie(user, a, b, c, d) < std::tie(other.user, other.a, other.b, other.c, other.d);
  }
};

struct IptvState {
  using Channels = std::map<uint32_t, ChannelSettings>;  ///< by number

  std::map<std::string, Channels> profiles;  ///< by name
  std::set<UserChannel> user_channels;
};

}  // namespace olt::box

#endif
