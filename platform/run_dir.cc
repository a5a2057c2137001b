#include "platform/run_dir.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

#include "base/accounts.h"
#include "base/descriptor.h"
#include "platform/credentials.h"
#include "platform/failure.h"
#include "platform/log.h"
#include "platform/olthost.h"

namespace olt::platform {

namespace {

constexpr mode_t kOwnMode = 0700;
constexpr mode_t kGroupMode = 0750;
constexpr mode_t kModeBits = 0777;

std::string quoted(const std::string &path) {
  return "run directory \"" + path + "\"";
}

std::string octal(mode_t mode) {
  std::array<char, 16> text;
  std::snprintf(text.data(), text.size(), "%04o", static_cast<unsigned>(mode & kModeBits));
  return text.data();
}

bool is_empty(const std::string &path, int directory) {
  Descriptor copy(openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  const std::unique_ptr<DIR, int (*)(DIR *)> entries(
      copy.is_open() ? fdopendir(copy.get()) : nullptr, ::closedir);
  if (!entries) throw system_failure(quoted(path) + " cannot be read", errno);
  copy.release();
  for (;;) {
    errno = 0;
    const dirent *entry = readdir(entries.get());
    if (entry == nullptr && errno != 0) {
      throw system_failure(quoted(path) + " cannot be read", errno);
    }
    if (entry == nullptr) return true;
    std::string_view name = entry->d_name;
    if (name != "." && name != "..") return false;
  }
}

// Permissions beyond the wanted ones, be it only that a group has them which is not the allowed
// one: whoever had them may have put something there.
bool is_too_open(const struct stat &found, std::optional<gid_t> allowed_group) {
  mode_t wanted = allowed_group && found.st_gid == *allowed_group ? kGroupMode : kOwnMode;
  return (found.st_mode & kModeBits & ~wanted) != 0;
}

void require_trustworthy(const std::string &path, int directory, const struct stat &found,
                         std::optional<gid_t> allowed_group) {
  if (found.st_uid != geteuid()) {
    throw Failure(quoted(path) + " belongs to user " + user_name(found.st_uid) + "; expected " +
                  user_name(geteuid()));
  }
  if (is_too_open(found, allowed_group) && !is_empty(path, directory)) {
    throw Failure(quoted(path) + " is not empty and has mode " + octal(found.st_mode) +
                  " and group " + group_name(found.st_gid) + "; expected mode " +
                  (allowed_group ? octal(kGroupMode) + " and group " + group_name(*allowed_group)
                                 : octal(kOwnMode)));
  }
}

}  // namespace

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
  if (mkdir(path.c_str(), kOwnMode) != 0 && errno != EEXIST) {
    throw system_failure(quoted(path) + " cannot be created", errno);
  }
  Descriptor directory(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  struct stat found {};
  if (!directory.is_open() || fstat(directory.get(), &found) != 0) {
    throw system_failure(quoted(path) + " cannot be used", errno);
  }
  require_trustworthy(path, directory.get(), found, allowed_group);
  if (allowed_group && found.st_gid != *allowed_group &&
      fchown(directory.get(), static_cast<uid_t>(-1), *allowed_group) != 0) {
    throw system_failure(quoted(path) + " cannot be given to group " + group_name(*allowed_group),
                         errno);
  }
  if (fchmod(directory.get(), allowed_group ? kGroupMode : kOwnMode) != 0) {
    throw system_failure(quoted(path) + " cannot be closed to others", errno);
  }
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
