#include "cli/text/file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <utility>

#include "base/descriptor.h"
#include "cli/text/error.h"
#include "cli/text/pager.h"

namespace olt::cli {

namespace {

constexpr mode_t kNewFile = 0666;

std::error_code last_error() {
  return {errno, std::generic_category()};
}

std::error_code write_all(Descriptor file, ByteView bytes) {
  while (!bytes.empty()) {
    ssize_t count = write(file.get(), bytes.data(), bytes.size());
    if (count < 0) return last_error();
    bytes = bytes.subspan(static_cast<size_t>(count));
  }
  if (close(file.release()) != 0) return last_error();
  return {};
}

/// Creates a file beside the path under a name that nothing has yet.
Descriptor create_beside(const std::string &path, mode_t mode, std::string &name) {
  std::random_device random;
  Descriptor file;
  do {
    name = fmt::format("{}.{:08x}", path, random());
    file = Descriptor(open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
  } while (!file.is_open() && errno == EEXIST);
  return file;
}

/// @param replaced the file that is replaced; null when there is none
std::error_code replace(const std::string &path, const struct stat *replaced, ByteView bytes,
                        mode_t mask) {
  std::string fresh;
  mode_t mode = (replaced == nullptr ? kNewFile : replaced->st_mode) & mask;
  Descriptor file = create_beside(path, mode & 0777, fresh);
  if (!file.is_open()) return last_error();
  std::error_code error;
  if (replaced != nullptr && fchmod(file.get(), mode & 07777) != 0) {
    error = last_error();
  }
  if (!error) error = write_all(std::move(file), bytes);
  if (!error && rename(fresh.c_str(), path.c_str()) != 0) error = last_error();
  if (error) unlink(fresh.c_str());
  return error;
}

}  // namespace

std::string read_file(const std::string &path, size_t max, std::error_code &error) {
  std::string content;
  Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  char bytes[64 * 1024];
  ssize_t count = file.is_open() ? read(file.get(), bytes, sizeof bytes) : -1;
  while (count > 0 && content.size() + static_cast<size_t>(count) <= max) {
    content.append(bytes, static_cast<size_t>(count));
    count = read(file.get(), bytes, sizeof bytes);
  }
  if (count < 0) error = last_error();
  if (count > 0) error = std::make_error_code(std::errc::file_too_large);
  return error ? std::string() : content;
}

std::error_code write_file(const std::string &path, ByteView bytes, mode_t mask) {
  struct stat found {};
  if (stat(path.c_str(), &found) != 0) return replace(path, nullptr, bytes, mask);
  if (S_ISREG(found.st_mode)) {
    std::error_code error;
    std::filesystem::path target = std::filesystem::canonical(path, error);
    return error ? error : replace(target, &found, bytes, mask);
  }
  Descriptor file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
  if (!file.is_open()) return last_error();
  return write_all(std::move(file), bytes);
}

void print(const std::string &text) {
  if (show_in_pager(text)) return;
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
    if (errno == EPIPE) throw ReaderGone();
    fail("oltctl: cannot write the output: {}", std::strerror(errno));
  }
}

}  // namespace olt::cli
