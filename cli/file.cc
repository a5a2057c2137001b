#include "cli/file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace olt::cli {

std::string read_file(const std::string &path, size_t most, std::error_code &error) {
  std::string content;
  int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  char bytes[64 * 1024];
  ssize_t count = file < 0 ? -1 : read(file, bytes, sizeof bytes);
  while (count > 0 && content.size() + static_cast<size_t>(count) <= most) {
    content.append(bytes, static_cast<size_t>(count));
    count = read(file, bytes, sizeof bytes);
  }
  if (count < 0) error = {errno, std::generic_category()};
  if (count > 0) error = std::make_error_code(std::errc::file_too_large);
  if (file >= 0) close(file);
  return error ? std::string() : content;
}

}  // namespace olt::cli
