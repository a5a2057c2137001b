#include "cli/box_access.h"

#include <cstdlib>

#include "cli/state_folder.h"

namespace olt::cli {

void BoxAccess::open() {
  if (!options_.run_dir.empty()) {
    setenv("OLT_RUN_DIR", options_.run_dir.c_str(), 1);
  } else if (!embedded_) {
    embedded_.emplace(state_folder() / "embedded", options_.topology, options_.fresh);
  }
}

void BoxAccess::close() {
  if (embedded_) embedded_->close();
}

std::filesystem::path BoxAccess::listing_dir() const {
  return embedded_ ? embedded_->listing_dir() : std::filesystem::path(options_.run_dir);
}

}  // namespace olt::cli
