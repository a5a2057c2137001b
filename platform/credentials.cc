#include "platform/credentials.h"

#include <grp.h>
#include <pwd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <vector>

#include "platform/failure.h"

namespace olt::platform {
namespace {

constexpr std::size_t kMostNameBytes = std::size_t{1024} * 1024;

// The lookups of the user database share one way of asking: grow the buffer until it fits.
template <typename Entry, typename Lookup>
std::optional<Entry> look_up(std::vector<char> &buffer, Lookup lookup) {
  Entry entry{};
  Entry *found = nullptr;
  for (buffer.resize(1024); buffer.size() <= kMostNameBytes; buffer.resize(buffer.size() * 2)) {
    if (lookup(&entry, buffer.data(), buffer.size(), &found) != ERANGE) {
      break;
    }
  }
  return found != nullptr ? std::optional(entry) : std::nullopt;
}

std::string numbered(const char *name, unsigned number) {
  return name != nullptr ? std::string(name) + " (" + std::to_string(number) + ")"
                         : std::to_string(number);
}

std::vector<gid_t> groups_of_peer(int socket) {
  std::vector<gid_t> groups(32);
  auto size = static_cast<socklen_t>(groups.size() * sizeof(gid_t));
  if (::getsockopt(socket, SOL_SOCKET, SO_PEERGROUPS, groups.data(), &size) != 0) {
    if (errno != ERANGE) {
      return {};
    }
    groups.resize(size / sizeof(gid_t));
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERGROUPS, groups.data(), &size) != 0) {
      return {};
    }
  }
  groups.resize(size / sizeof(gid_t));
  return groups;
}

bool is_member(int socket, gid_t own_group_of_peer, gid_t group) {
  const std::vector<gid_t> others = groups_of_peer(socket);
  return own_group_of_peer == group ||
         std::find(others.begin(), others.end(), group) != others.end();
}

std::string expected_peers(std::optional<gid_t> allowed_group) {
  std::string text = "expected user " + user_name(::geteuid());
  if (::geteuid() != 0) {
    text += " or root";
  }
  if (allowed_group) {
    text += " or a member of group " + group_name(*allowed_group);
  }
  return text;
}

}  // namespace

gid_t find_group(const std::string &name_or_number) {
  gid_t number{};
  const char *end = name_or_number.data() + name_or_number.size();
  const auto [stop, error] = std::from_chars(name_or_number.data(), end, number);
  if (error == std::errc() && stop == end) {
    return number;
  }
  std::vector<char> buffer;
  const auto entry = look_up<group>(
      buffer, [&](auto... rest) { return ::getgrnam_r(name_or_number.c_str(), rest...); });
  if (!entry) {
    throw Failure("group \"" + name_or_number +
                  "\" is not known; expected the name or the number of a group");
  }
  return entry->gr_gid;
}

std::string user_name(uid_t user) {
  std::vector<char> buffer;
  const auto entry =
      look_up<passwd>(buffer, [&](auto... rest) { return ::getpwuid_r(user, rest...); });
  return numbered(entry ? entry->pw_name : nullptr, user);
}

std::string group_name(gid_t number) {
  std::vector<char> buffer;
  const auto entry =
      look_up<group>(buffer, [&](auto... rest) { return ::getgrgid_r(number, rest...); });
  return numbered(entry ? entry->gr_name : nullptr, number);
}

std::string refusal_of_peer(int socket, std::optional<gid_t> allowed_group) {
  ucred peer{};
  socklen_t size = sizeof peer;
  if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) {
    return "the user at the other end is not to be had; " + expected_peers(allowed_group);
  }
  if (peer.uid == ::geteuid() || peer.uid == 0 ||
      (allowed_group && is_member(socket, peer.gid, *allowed_group))) {
    return {};
  }
  return "user " + user_name(peer.uid) + " is refused; " + expected_peers(allowed_group);
}

}  // namespace olt::platform
