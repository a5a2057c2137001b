#include "base/folders.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <string_view>

#include "base/bad_input.h"

namespace olt {

namespace {

/// The absolute path that the variable holds; empty when it holds none.
std::filesystem::path path_from(const char *variable) {
  const char *value = std::getenv(variable);
  if (value == nullptr || *value != '/') return {};
  return value;
}

}  // namespace

std::filesystem::path state_folder() {
  if (auto home = path_from("XDG_STATE_HOME"); !home.empty()) return home / "oltmgmt";
  if (auto home = path_from("HOME"); !home.empty()) return home / ".local/state/oltmgmt";
  throw BadInput("no place for state; expected XDG_STATE_HOME or HOME to name an absolute path");
}

std::filesystem::path configuration_folder() {
  if (auto home = path_from("XDG_CONFIG_HOME"); !home.empty()) return home / "oltmgmt";
  if (auto home = path_from("HOME"); !home.empty()) return home / ".config/oltmgmt";
  return {};
}

std::error_code make_directories(const std::filesystem::path &path) {
  std::error_code error;
  if (path.empty() || std::filesystem::exists(path, error) || error) return error;
  error = make_directories(path.parent_path());
  if (!error && mkdir(path.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
    error = {errno, std::generic_category()};
  }
  return error;
}

}  // namespace olt
