#include "cli/box/access.h"

#include <fmt/format.h>

#include <cstdlib>
#include <system_error>

#include "cli/box/own_state_folder.h"
#include "cli/text/error.h"
#include "flash_device/flash_device.h"
#include "platform/olthost.h"

namespace olt::cli {

void Access::open() {
  std::lock_guard lock(mutex_);
  if (!options_.run_dir.empty()) {
    setenv("OLT_RUN_DIR", options_.run_dir.c_str(), 1);
  } else if (!embedded_) {
    std::filesystem::path folder = own_state_folder() / "embedded";
    embedded_.emplace(folder, options_);
    flash_image_ = folder / "flash.img";
    if (options_.fresh) forget_flash();
  }
}

void Access::forget_flash() const {
  std::error_code error;
  std::filesystem::remove(flash_image_, error);
  if (error) fail("oltctl: cannot remove {}: {}", flash_image_.string(), error.message());
}

void Access::open_flash(const char *operation) {
  if (options_.real_flash) return;
  if (!options_.run_dir.empty()) {
    wrong_usage(
        "{}: the box in {} does not hold the flash; expected --real-flash for this machine's own"
        " /dev/mtd0, or --box embedded for a simulated one",
        operation, options_.run_dir);
  }
  open();
  char error[flash_device::kErrorLength];
  if (!flash_device::redirect(flash_image_.c_str(), error)) fail("oltctl: {}", error);
}

std::string Access::advice(int32_t result) const {
  if (result != OLT_TRANSPORT_NO_MODULE || options_.run_dir.empty()) return "";
  return fmt::format(
      "; expected a box that was started with 'oltbox --run-dir {}', or --box embedded",
      options_.run_dir);
}

void Access::close() {
  std::lock_guard lock(mutex_);
  close_embedded();
}

void Access::close_for_good() {
  mutex_.lock();
  close_embedded();
}

void Access::close_embedded() {
  if (embedded_) embedded_->close();
}

std::filesystem::path Access::listing_dir() const {
  return embedded_ ? embedded_->listing_dir() : std::filesystem::path(options_.run_dir);
}

}  // namespace olt::cli
