/// Firmware images, read piece by piece.
#ifndef OLT_CLI_UPDATE_IMAGE_FILE_H
#define OLT_CLI_UPDATE_IMAGE_FILE_H

#include <sys/stat.h>

#include <cstdint>
#include <span>
#include <string>

#include "base/descriptor.h"

namespace olt::cli {

class ImageFile {
 public:
  /// Throws Error when the file is not one of 1 to that many bytes.
  ImageFile(std::string path, uint32_t max_size);

  const std::string &path() const { return path_; }
  uint32_t size() const { return static_cast<uint32_t>(status_.st_size); }

  /// Fills the piece with the image's bytes from there on. Throws Error, also when the file is no
  /// longer what it was when it was opened.
  void read(uint32_t position, std::span<uint8_t> piece) const;

 private:
  std::string path_;
  Descriptor file_;
  struct stat status_ {};
};

}  // namespace olt::cli

#endif
