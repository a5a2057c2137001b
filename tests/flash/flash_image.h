/// A flash image in a folder of its own, with /dev/mtd0 redirected to it.
#ifndef OLT_TESTS_FLASH_FLASH_IMAGE_H
#define OLT_TESTS_FLASH_FLASH_IMAGE_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "flash_device/flash_device.h"
#include "tests/support/bytes.h"
#include "tests/support/folder.h"

namespace olt::test {

class FlashImage {
 public:
  FlashImage();
  FlashImage(const FlashImage &) = delete;
  FlashImage &operator=(const FlashImage &) = delete;
  ~FlashImage();

  /// Switches the power off and on again. The options apply from now on.
  void restart(const char *faults = "", bool nor = false) const;

  const std::filesystem::path &path() const { return path_; }

  /// Bytes of the image file, not read through the device.
  Bytes bytes(size_t offset, size_t length) const;
  void put(size_t offset, const Bytes &bytes) const;

 private:
  Folder folder_;
  std::filesystem::path path_ = folder_ / "flash.img";
};

/// The error of redirect with these options; empty if it accepts them.
std::string redirect_error(const std::filesystem::path &image,
                           const flash_device::Options &options = {});

}  // namespace olt::test

#endif
