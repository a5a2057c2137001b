#include "cli/file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace olt::cli {

namespace {

std::error_code last_error() {
  return {errno, std::generic_category()};
}

std::error_code write_all(int file, ByteView bytes) {
  while (!bytes.empty()) {
    ssize_t count = write(file, bytes.data(), bytes.size());
    if (count < 0) return last_error();
    bytes = bytes.subspan(static_cast<size_t>(count));
  }
  return {};
}

std::error_code write_to(const std::string &path, ByteView bytes) {
  constexpr mode_t kMode = 0666;
  int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kMode);
  if (file < 0) return last_error();
  std::error_code error = write_all(file, bytes);
  if (close(file) != 0 && !error) error = last_error();
  return error;
}

}  // namespace

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

std::error_code write_file(const std::string &path, ByteView bytes) {
  std::error_code error;
  std::filesystem::file_status found = std::filesystem::status(path, error);
  if (exists(found) && !is_regular_file(found)) return write_to(path, bytes);
  std::string fresh = path + ".new";
  error = write_to(fresh, bytes);
  if (!error) std::filesystem::rename(fresh, path, error);
  if (error) unlink(fresh.c_str());
  return error;
}

}  // namespace olt::cli
