#include "box/state/files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "base/folders.h"
#include "base/private_directory.h"
#include "base/text.h"

namespace olt::box {

namespace {

std::string why(int error) {
  return std::generic_category().message(error);
}

[[noreturn]] void fail(const std::string &what) {
  int error = errno;
  throw StorageFailure(what + ": " + why(error));
}

void write_all(int fd, std::string_view content, const std::string &name) {
  while (!content.empty()) {
    ssize_t count = write(fd, content.data(), content.size());
    if (count < 0 && errno != EINTR) fail(name);
    if (count > 0) content.remove_prefix(static_cast<size_t>(count));
  }
}

/// Who holds the lock on the directory, as far as the system says.
std::string holder_of_lock(const Descriptor &directory) {
  struct stat found {};
  fstat(directory.get(), &found);
  std::string device_and_inode =
      fmt::format("{:02x}:{:02x}:{}", major(found.st_dev), minor(found.st_dev), found.st_ino);
  std::ifstream locks("/proc/locks");
  for (std::string line; std::getline(locks, line);) {
    std::istringstream words(line);
    std::string number, kind, strength, access, process, file;
    words >> number >> kind >> strength >> access >> process >> file;
    if (kind != "FLOCK" || file != device_and_inode) continue;
    std::string program;
    std::getline(std::ifstream("/proc/" + process + "/comm"), program);
    return fmt::format("process {} ({})", process,
                       program.empty() ? "its program is unknown" : printable_ascii(program));
  }
  return "another box";
}

/// Names of a file that is being written, and of the one that it replaces.
constexpr char kNew[] = ".new";
constexpr char kOld[] = ".old";

/// Far more than any state takes.
constexpr size_t kMaxFile = size_t{1} << 30;

/// Opens for reading, without waiting for a writer as a FIFO does.
constexpr int kReading = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

/// The content of a regular file that is not too large.
std::string read_all(int fd, const std::string &name) {
  struct stat found {};
  if (fstat(fd, &found) != 0) fail(name);
  if (!S_ISREG(found.st_mode)) throw StorageFailure(name + ": is no regular file; expected one");
  auto refuse_beyond = [&name](uint64_t length) {
    if (length <= kMaxFile) return;
    throw StorageFailure(name + ": is too large; expected at most 1 GiB");
  };
  refuse_beyond(static_cast<uint64_t>(found.st_size));
  std::string content;
  content.reserve(static_cast<size_t>(found.st_size));
  char part[64 * 1024];
  for (;;) {
    ssize_t count = read(fd, part, sizeof part);
    if (count == 0) return content;
    if (count < 0 && errno != EINTR) fail(name);
    if (count > 0) content.append(part, static_cast<size_t>(count));
    refuse_beyond(content.size());
  }
}

void fill(int directory, const std::string &name, std::string_view content,
          const Placement &placement) {
  Descriptor file(
      openat(directory, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!file.is_open()) fail(name);
  if (placement.group && fchown(file.get(), static_cast<uid_t>(-1), *placement.group) != 0) {
    fail(name);
  }
  if (fchmod(file.get(), placement.mode) != 0) fail(name);
  write_all(file.get(), content, name);
  if (placement.durable == Durable::kYes && fsync(file.get()) != 0) fail(name);
}

void rename_within(int directory, const std::string &from, const std::string &to) {
  if (renameat(directory, from.c_str(), directory, to.c_str()) != 0) fail(to);
}

/// Renames the file and syncs the directory. Keeps a link to the old file until the sync is done,
/// to restore it on failure.
void put_durably(int directory, const std::string &from, const std::string &to) {
  unlinkat(directory, kOld, 0);
  bool existed = linkat(directory, to.c_str(), directory, kOld, 0) == 0;
  if (!existed && errno != ENOENT) fail(to);
  try {
    rename_within(directory, from, to);
    if (fsync(directory) != 0) {
      int error = errno;
      if (existed) {
        renameat(directory, kOld, directory, to.c_str());
      } else {
        unlinkat(directory, to.c_str(), 0);
      }
      errno = error;
      fail(to);
    }
  } catch (...) {
    unlinkat(directory, kOld, 0);
    throw;
  }
  unlinkat(directory, kOld, 0);
}

}  // namespace

Descriptor open_directory(const std::filesystem::path &path) {
  if (std::error_code error = make_directories(path)) {
    throw StorageFailure(path.string() + ": " + error.message());
  }
  Descriptor directory(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!directory.is_open()) fail(path.string());
  return directory;
}

std::string read_file(const std::filesystem::path &path) {
  Descriptor file(open(path.c_str(), kReading));
  if (!file.is_open()) fail("cannot be read");
  return read_all(file.get(), "cannot be read");
}

void replace_file(const Descriptor &directory, const std::string &name, std::string_view content,
                  const Placement &placement) {
  // A directory has one writer, so a file found here was left over by a killed process.
  unlinkat(directory.get(), kNew, 0);
  try {
    fill(directory.get(), kNew, content, placement);
    if (placement.durable == Durable::kYes) {
      put_durably(directory.get(), kNew, name);
    } else {
      rename_within(directory.get(), kNew, name);
    }
  } catch (...) {
    unlinkat(directory.get(), kNew, 0);
    throw;
  }
}

StateDirectory::StateDirectory(std::filesystem::path path, std::chrono::milliseconds patience)
    : path_(std::move(path)),
      directory_(open_private_directory(
          {.what = "state directory", .path = path_.string(), .create_parents = true})) {
  auto deadline = std::chrono::steady_clock::now() + patience;
  while (flock(directory_.get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) fail(path_.string());
    if (std::chrono::steady_clock::now() >= deadline) {
      throw StateInUse(path_.string(), holder_of_lock(directory_));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  // A killed process may have left them behind, with all secrets.
  for (const char *name : {kNew, kOld}) unlinkat(directory_.get(), name, 0);
}

std::optional<std::string> StateDirectory::read(const std::string &name) const {
  Descriptor file(openat(directory_.get(), name.c_str(), kReading | O_NOFOLLOW));
  if (!file.is_open() && errno == ENOENT) return std::nullopt;
  if (!file.is_open()) fail(path_of(name));
  return read_all(file.get(), path_of(name));
}

void StateDirectory::write(const std::string &name, std::string_view content, Durable durable) {
  try {
    replace_file(directory_, name, content, {.durable = durable});
  } catch (const StorageFailure &failure) {
    throw StorageFailure(path_.string() + '/' + failure.what());
  }
}

void StateDirectory::remove(const std::string &name) {
  if (unlinkat(directory_.get(), name.c_str(), 0) != 0 && errno != ENOENT) fail(path_of(name));
}

}  // namespace olt::box
