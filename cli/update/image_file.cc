#include "cli/update/image_file.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "base/text.h"
#include "cli/text/error.h"

namespace olt::cli {

ImageFile::ImageFile(std::string path, uint32_t max_size)
    // Without O_NONBLOCK, opening a pipe would wait for its writer.
    : path_(std::move(path)), file_(open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
  auto refuse = [&](const std::string &what) {
    wrong_usage("update: {}: {}; expected a firmware image, a file of 1 to {} bytes",
                printable(path_), what, max_size);
  };
  if (!file_.is_open() || fstat(file_.get(), &status_) != 0) refuse(std::strerror(errno));
  if (!S_ISREG(status_.st_mode)) refuse("is not a regular file");
  if (status_.st_size == 0) refuse("is empty");
  if (static_cast<uint64_t>(status_.st_size) > max_size)
    refuse(fmt::format("has {} bytes", status_.st_size));
}

void ImageFile::read(uint32_t position, std::span<uint8_t> piece) const {
  struct stat now {};
  bool is_same = fstat(file_.get(), &now) == 0 && now.st_size == status_.st_size &&
                 now.st_mtim.tv_sec == status_.st_mtim.tv_sec &&
                 now.st_mtim.tv_nsec == status_.st_mtim.tv_nsec;
  if (!is_same) fail("{} was changed", printable(path_));
  while (!piece.empty()) {
    ssize_t count = pread(file_.get(), piece.data(), piece.size(), static_cast<off_t>(position));
    if (count < 0) fail("cannot read {}: {}", printable(path_), std::strerror(errno));
    if (count == 0) fail("{} was changed", printable(path_));
    piece = piece.subspan(static_cast<size_t>(count));
    position += static_cast<uint32_t>(count);
  }
}

}  // namespace olt::cli
