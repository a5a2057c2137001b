/// Who may be at the other end of a socket.
#ifndef OLT_PLATFORM_CREDENTIALS_H
#define OLT_PLATFORM_CREDENTIALS_H

#include <sys/types.h>

#include <optional>
#include <string>

namespace olt::platform {

/// The number of the group that find_group finds; throws Failure when there is none.
gid_t require_group(const std::string &name_or_number);

/// Empty if the peer of the socket is this process's user, root or a member of the allowed group;
/// else a line that says who it is and who is expected.
std::string refusal_of_peer(int socket, std::optional<gid_t> allowed_group);

/// The process at the other end of the socket; 0 when it is unknown.
uint32_t process_of_peer(int socket);

}  // namespace olt::platform

#endif
