#include "capture/capture_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <new>
#include <system_error>
#include <utility>

#include "capture/trace/files.h"
#include "capture/trace/listings.h"

namespace olt::capture {

namespace {

constexpr size_t kMaxWaitingBytes = 8 << 20;
constexpr size_t kMaxListings = 64;
constexpr int kMaxNames = 1000;
/// Exchanges are gathered so long, so that the thread seldom wakes.
constexpr std::chrono::milliseconds kGathering(20);

/// FILE.pcapng, FILE-1.pcapng and so on.
std::string numbered(const std::string &path, int number) {
  if (number == 0) return path;
  size_t name = path.rfind('/') + 1;
  size_t point = path.rfind('.');
  if (point == std::string::npos || point <= name) point = path.size();
  return fmt::format("{}-{}{}", path.substr(0, point), number, path.substr(point));
}

bool is_taken(const std::string &path) {
  struct stat found {};
  return lstat(path.c_str(), &found) == 0;
}

std::string old_of(const std::string &path) {
  return path + ".old";
}

}  // namespace

CaptureFile::CaptureFile(const std::string &program, CaptureFileOptions options)
    : options_(std::move(options)), writer_(program, options_.with_secrets) {
  if (!create_first()) {
    end(options_.path, errno);
    return;
  }
  if (path_ != options_.path) {
    options_.report(
        fmt::format("{}: exists; the capture is {}", printable(options_.path), printable(path_)));
  }
  writer_.begin(waiting_.bytes);
  file_bytes_ = waiting_.bytes.size();
  sigset_t all;
  sigset_t before;
  sigfillset(&all);  // signals are for the program's own threads
  pthread_sigmask(SIG_SETMASK, &all, &before);
  try {
    thread_ = std::thread([this] { run(); });
  } catch (const std::system_error &error) {
    end(path_, error.code().value());
  }
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

CaptureFile::~CaptureFile() {
  if (!thread_.joinable()) return;
  {
    std::lock_guard lock(mutex_);
    stops_ = true;
  }
  wake_.notify_one();
  thread_.join();
}

bool CaptureFile::create() {
  file_ = above_standard_streams(
      Descriptor(open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600)));
  written_ = 0;
  return file_.is_open();
}

bool CaptureFile::create_first() {
  for (int number = 0; number < kMaxNames; ++number) {
    path_ = numbered(options_.path, number);
    errno = EEXIST;
    if (!is_taken(old_of(path_)) && create()) return true;
    if (errno != EEXIST) break;
  }
  return false;
}

void CaptureFile::add(const WrittenExchange &exchange, const std::string &program,
                      const std::string &folder) {
  if (has_ended_) return;
  bool wakes = false;
  {
    std::lock_guard lock(mutex_);
    wakes = waiting_.is_empty();
    Bytes &bytes = waiting_.bytes;
    if (options_.limit != 0 && file_bytes_ + Writer::max_size(exchange) > options_.limit / 2) {
      waiting_.turns.push_back(bytes.size());
      file_bytes_ = 0;
    }
    size_t before = bytes.size();
    if (file_bytes_ == 0) writer_.begin(bytes);
    writer_.add(exchange, program, bytes, kMaxWaitingBytes);
    file_bytes_ += bytes.size() - before;
    if (!options_.listings.empty()) open_listing(exchange, folder);
  }
  if (wakes) wake_.notify_one();
}

/// Opens it before anybody can remove it.
void CaptureFile::open_listing(const WrittenExchange &exchange, const std::string &folder) {
  const char *name = listing_in(&exchange);
  if (name == nullptr) return;
  std::string path(name, strnlen(name, kListingName));
  if (path[0] != '/') path = fmt::format("{}/{}", folder, path);
  Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!file.is_open()) return report_listing(path, errno);
  if (waiting_.listings.size() == kMaxListings) return report_listing(path, EBUSY);
  char kept[kKeptPath];
  name_kept_listing(&exchange, options_.listings.c_str(), kept);
  waiting_.listings.push_back({std::move(file), kept});
}

void CaptureFile::run() {
  try {
    write_batches();
  } catch (const std::bad_alloc &) {
    end(path_, ENOMEM);
  }
}

void CaptureFile::write_batches() {
  std::unique_lock lock(mutex_);
  for (;;) {
    wake_.wait(lock, [this] { return stops_ || !waiting_.is_empty(); });
    wake_.wait_for(lock, kGathering, [this] { return stops_; });
    if (waiting_.is_empty()) return;
    Batch batch = std::exchange(waiting_, {});
    lock.unlock();
    write(batch);
    lock.lock();
  }
}

void CaptureFile::write(Batch &batch) {
  size_t from = 0;
  batch.turns.push_back(batch.bytes.size());
  for (size_t i = 0; i < batch.turns.size() && !has_ended_; ++i) {
    size_t to = batch.turns[i];
    bool is_last = i + 1 == batch.turns.size();
    bool is_written = write(ByteView(batch.bytes).subspan(from, to - from));
    if (!is_written || (!is_last && !turn_over())) end(path_, errno);
    from = to;
  }
  for (const Listing &listing : batch.listings) {
    if (!copy_file(listing.file.get(), listing.kept.c_str(), kMaxListing))
      report_listing(listing.kept, errno);
  }
}

/// @return false, with errno, after a failure. The file then is as it was.
bool CaptureFile::write(ByteView bytes) {
  size_t done = 0;
  while (done < bytes.size()) {
    ssize_t count = ::write(file_.get(), bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) {
      int error = count < 0 ? errno : ENOSPC;
      [[maybe_unused]] int cut = ftruncate(file_.get(), static_cast<off_t>(written_));
      errno = error;
      return false;
    }
    done += static_cast<size_t>(count);
  }
  written_ += bytes.size();
  return true;
}

bool CaptureFile::turn_over() {
  file_.close();
  return rename(path_.c_str(), old_of(path_).c_str()) == 0 && create();
}

void CaptureFile::end(const std::string &place, int error) {
  has_ended_ = true;
  report(place, error, "capture ends");
}

void CaptureFile::report_listing(const std::string &path, int error) {
  if (!has_reported_.exchange(true)) report(path, error, "the listing is not kept");
}

void CaptureFile::report(const std::string &place, int error, const char *effect) {
  try {
    options_.report(fmt::format("{}: {}; {}", printable(place), std::strerror(error), effect));
  } catch (const std::bad_alloc &) {
    // The line is lost as well.
    return;
  }
}

}  // namespace olt::capture
