#include "platform/credentials.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "base/accounts.h"
#include "base/failure.h"

namespace olt::platform {

namespace {

std::vector<gid_t> groups_of_peer(int socket) {
  std::vector<gid_t> groups(32);
  auto size = static_cast<socklen_t>(groups.size() * sizeof(gid_t));
  if (getsockopt(socket, SOL_SOCKET, SO_PEERGROUPS, groups.data(), &size) != 0) {
    if (errno != ERANGE) return {};
    groups.resize(size / sizeof(gid_t));
    if (getsockopt(socket, SOL_SOCKET, SO_PEERGROUPS, groups.data(), &size) != 0) return {};
  }
  groups.resize(size / sizeof(gid_t));
  return groups;
}

bool is_member(int socket, gid_t own_group_of_peer, gid_t group) {
  std::vector<gid_t> others = groups_of_peer(socket);
  return own_group_of_peer == group ||
         std::find(others.begin(), others.end(), group) != others.end();
}

std::string expected_peers(std::optional<gid_t> allowed_group) {
  std::string text = "expected user " + user_name(geteuid());
  if (geteuid() != 0) text += " or root";
  if (allowed_group) text += " or a member of group " + group_name(*allowed_group);
  return text;
}

}  // namespace

gid_t require_group(const std::string &name_or_number) {
  std::optional<gid_t> group = find_group(name_or_number);
  if (!group) {
    throw Failure("group \"" + name_or_number +
                  "\" is not known; expected the name or the number of a group");
  }
  return *group;
}

std::string refusal_of_peer(int socket, std::optional<gid_t> allowed_group) {
  ucred peer{};
  socklen_t size = sizeof peer;
  if (getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) {
    int error = errno;
    return std::string("the user at the other end is unknown: ") + std::strerror(error) + "; " +
           expected_peers(allowed_group);
  }
  if (peer.uid == geteuid() || peer.uid == 0 ||
      (allowed_group && is_member(socket, peer.gid, *allowed_group))) {
    return {};
  }
  return "user " + user_name(peer.uid) + " is refused; " + expected_peers(allowed_group);
}

uint32_t process_of_peer(int socket) {
  ucred peer{};
  socklen_t size = sizeof peer;
  if (getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) return 0;
  return static_cast<uint32_t>(peer.pid);
}

}  // namespace olt::platform
