/// The run directory, where each module has its socket.
#ifndef OLT_PLATFORM_RUN_DIR_H
#define OLT_PLATFORM_RUN_DIR_H

#include <sys/types.h>
#include <sys/un.h>

#include <cstdint>
#include <optional>
#include <string>

namespace olt::platform {

/// The run directory that the environment selects.
std::string selected_run_dir();

/// "DIR/module-N".
std::string socket_path(const std::string &run_dir, uint32_t module);

/// Address of a socket; nothing when the path is too long for one.
std::optional<sockaddr_un> socket_address(const std::string &path);

/// The error line for a path that is too long for a socket.
std::string too_long_for_socket(const std::string &path);

/// Makes the directory ready for serving: a private directory of the own user and the allowed
/// group. Throws Failure as open_private_directory does.
void prepare_run_dir(const std::string &path, std::optional<gid_t> allowed_group);

}  // namespace olt::platform

#endif
