#include "cli/box/access.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <utility>

#include "base/descriptor.h"
#include "base/text.h"
#include "catalog/operation.h"
#include "cli/box/interruption.h"
#include "cli/box/own_state_folder.h"
#include "cli/text/error.h"
#include "flash_device/flash_device.h"
#include "platform/olthost.h"

namespace olt::cli {

namespace {

int connect_to_running_box(void *run_dir, uint32_t module) {
  const auto &path = *static_cast<const std::string *>(run_dir);
  return interruptible(module, connect_in_run_dir(path, module));
}

}  // namespace

void Access::open() {
  std::lock_guard lock(mutex_);
  if (!options_.run_dir.empty()) {
    if (std::exchange(is_chosen_, true)) return;
    setenv("OLT_RUN_DIR", options_.run_dir.c_str(), 1);
    if (exchanges_are_interruptible()) {
      olt_connect_through(connect_to_running_box, &options_.run_dir);
    }
  } else if (!embedded_) {
    std::filesystem::path folder = own_state_folder() / "embedded";
    embedded_.emplace(folder, options_);
    flash_image_ = folder / "flash.img";
    if (options_.fresh) forget_flash();
  }
}

std::string Access::name() const {
  if (options_.run_dir.empty()) return "embedded";
  std::filesystem::path path = std::filesystem::absolute(options_.run_dir).lexically_normal();
  return printable((path.has_filename() ? path : path.parent_path()).filename().string());
}

std::string Access::description() const {
  if (!options_.run_dir.empty()) return fmt::format("the box in {}", printable(options_.run_dir));
  return fmt::format("the embedded box, whose state is kept in {}",
                     printable((own_state_folder() / "embedded").string()));
}

void Access::require_box() {
  open();
  if (options_.run_dir.empty()) return;
  Descriptor connection(connect_in_run_dir(options_.run_dir, catalog::Address::kMain));
  if (connection.is_open()) return;
  fail("oltctl: the box in {} is away: {}; {}", printable(options_.run_dir), std::strerror(errno),
       expected_box());
}

std::string Access::expected_box() const {
  return fmt::format(
      "expected a box that was started with 'oltbox --run-dir {}', or --box embedded",
      printable(options_.run_dir));
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
  return "; " + expected_box();
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
