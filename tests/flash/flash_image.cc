#include "tests/flash/flash_image.h"

#include <gtest/gtest.h>

#include <fstream>

namespace olt::test {

FlashImage::FlashImage() {
  restart();
}

FlashImage::~FlashImage() {
  flash_device::off();
}

void FlashImage::restart(const char *faults, bool nor) const {
  ASSERT_EQ(redirect_error(path_, {.nor = nor, .faults = faults}), "");
}

Bytes FlashImage::bytes(size_t offset, size_t length) const {
  Bytes bytes(length);
  std::ifstream file(path_, std::ios::binary);
  file.seekg(static_cast<std::streamoff>(offset));
  file.read(reinterpret_cast<char *>(bytes.data()), static_cast<std::streamsize>(length));
  EXPECT_TRUE(file.good());
  return bytes;
}

void FlashImage::put(size_t offset, const Bytes &bytes) const {
  std::fstream file(path_, std::ios::binary | std::ios::in | std::ios::out);
  file.seekp(static_cast<std::streamoff>(offset));
  file.write(reinterpret_cast<const char *>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  EXPECT_TRUE(file.flush().good());
}

std::string redirect_error(const std::filesystem::path &image,
                           const flash_device::Options &options) {
  char error[flash_device::kErrorLength] = "";
  return flash_device::redirect(image.c_str(), error, options) ? "" : error;
}

}  // namespace olt::test
