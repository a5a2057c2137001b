#include "platform/run_dir.h"

#include <sys/socket.h>

#include <cstring>

#include "base/private_directory.h"
#include "platform/log.h"
#include "platform/olthost.h"

namespace olt::platform {

std::string selected_run_dir() {
  if (const char *chosen = environment("OLT_RUN_DIR")) return chosen;
  const char *runtime = environment("XDG_RUNTIME_DIR");
  return std::string(runtime != nullptr ? runtime : "/run") + "/oltmgmt";
}

std::string socket_path(const std::string &run_dir, uint32_t module) {
  return run_dir + "/module-" + std::to_string(module);
}

std::optional<sockaddr_un> socket_address(const std::string &path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return std::nullopt;
  path.copy(address.sun_path, path.size());
  return address;
}

std::string too_long_for_socket(const std::string &path) {
  return "socket path \"" + path + "\" has " + std::to_string(path.size()) +
         " bytes; expected at most " + std::to_string(sizeof(sockaddr_un::sun_path) - 1);
}

void prepare_run_dir(const std::string &path, std::optional<gid_t> allowed_group) {
  open_private_directory({.what = "run directory",
                          .path = path,
                          .group = allowed_group,
                          .mode = allowed_group ? mode_t{0750} : mode_t{0700}});
}

}  // namespace olt::platform

int olt_run_dir(char *path, size_t size) {
  std::string selected = olt::platform::selected_run_dir();
  if (selected.size() >= size) {
    if (size > 0) *path = '\0';
    return -1;
  }
  std::memcpy(path, selected.c_str(), selected.size() + 1);
  return 0;
}
