#include "cli/state_folder.h"

#include <sys/stat.h>

#include <cstdlib>
#include <string>
#include <system_error>

#include "cli/error.h"

namespace olt::cli {

namespace {

std::string variable(const char *name) {
  const char *value = std::getenv(name);
  return value != nullptr ? value : "";
}

std::filesystem::path state_home() {
  std::string home = variable("XDG_STATE_HOME");
  if (home.starts_with('/')) return home;
  home = variable("HOME");
  if (home.starts_with('/')) return std::filesystem::path(home) / ".local/state";
  fail(
      "oltctl: no place for the embedded box; expected XDG_STATE_HOME or HOME to name an absolute "
      "path");
}

}  // namespace

std::filesystem::path state_folder() {
  std::filesystem::path home = state_home();
  std::filesystem::path folder = home / "oltmgmt";
  std::error_code error;
  std::filesystem::create_directories(home, error);
  if (!error && mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
    error = {errno, std::generic_category()};
  }
  if (error) fail("oltctl: cannot create {}: {}", folder.string(), error.message());
  return folder;
}

}  // namespace olt::cli
