/// An image in a folder of its own, and /dev/mtd0 redirected to it.
#ifndef OLT_TESTS_FLASH_FLASH_IMAGE_H
#define OLT_TESTS_FLASH_FLASH_IMAGE_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "flash_device/flash_device.h"

namespace olt::tests {

class TemporaryFolder {
 public:
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder &) = delete;
  TemporaryFolder &operator=(const TemporaryFolder &) = delete;
  ~TemporaryFolder();
  std::filesystem::path operator/(const std::string &name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

class FlashImage {
 public:
  FlashImage();
  FlashImage(const FlashImage &) = delete;
  FlashImage &operator=(const FlashImage &) = delete;
  ~FlashImage();

  /// Switches the power off and on again, with these options from now on.
  void restart(const char *faults = "", bool nor = false) const;

  const std::filesystem::path &path() const { return path_; }

  /// The bytes of the image file, past the device.
  std::vector<uint8_t> bytes(size_t offset, size_t length) const;
  void put(size_t offset, const std::vector<uint8_t> &bytes) const;

 private:
  TemporaryFolder folder_;
  std::filesystem::path path_ = folder_ / "flash.img";
};

/// What redirect says of these options; empty when it takes them.
std::string redirect_error(const std::filesystem::path &image,
                           const flash_device::Options &options = {});

}  // namespace olt::tests

#endif
