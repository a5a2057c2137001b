#include "cli/box/own_state_folder.h"

#include "base/bad_input.h"
#include "base/folders.h"
#include "cli/text/error.h"

namespace olt::cli {

std::filesystem::path own_state_folder() {
  try {
    std::filesystem::path folder = state_folder();
    if (std::error_code error = make_directories(folder)) {
      fail("oltctl: cannot create {}: {}", folder.string(), error.message());
    }
    return folder;
  } catch (const BadInput &error) {
    fail("oltctl: {}", error.what());
  }
}

}  // namespace olt::cli
