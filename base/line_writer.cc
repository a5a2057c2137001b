#include "base/line_writer.h"

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "base/text.h"

namespace olt {

namespace {

/// Reopens a pipe or a terminal: O_NONBLOCK on the inherited descriptor would also affect the other
/// processes that share it.
int open_nonblocking(int stream) {
  struct stat found {};
  if (fstat(stream, &found) != 0 || !(S_ISFIFO(found.st_mode) || S_ISCHR(found.st_mode))) return -1;
  std::string path = "/proc/self/fd/" + std::to_string(stream);
  return open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

bool may_block(int stream) {
  struct stat found {};
  if (fstat(stream, &found) == 0 && S_ISREG(found.st_mode)) return false;
  return (fcntl(stream, F_GETFL) & O_NONBLOCK) == 0;
}

bool is_writable(int stream) {
  pollfd watched{.fd = stream, .events = POLLOUT, .revents = 0};
  return poll(&watched, 1, 0) > 0;
}

}  // namespace

LineWriter::LineWriter(int stream, std::string program, uint32_t lines_per_second, Clock clock)
    : own_(open_nonblocking(stream)),
      stream_(own_.is_open() ? own_.get() : stream),
      may_block_(may_block(stream_)),
      program_(std::move(program)),
      lines_per_second_(lines_per_second),
      clock_(std::move(clock)) {}

LineWriter::~LineWriter() {
  if (!flush() || left_out_ == 0) return;
  add_line({});
  flush();
}

void LineWriter::write(std::string_view line) {
  if (!within_rate() || !flush()) {
    ++left_out_;
    return;
  }
  add_line(line);
  flush();
}

bool LineWriter::within_rate() {
  if (lines_per_second_ == 0) return true;
  TimePoint now = clock_();
  if (now < second_ || now - second_ >= std::chrono::seconds(1)) {
    second_ = now;
    lines_in_second_ = 0;
  }
  if (lines_in_second_ == lines_per_second_) return false;
  ++lines_in_second_;
  return true;
}

void LineWriter::add_line(std::string_view line) {
  if (left_out_ > 0)
    pending_ += program_ + ": " + counted(static_cast<size_t>(left_out_), "line") + " left out\n";
  left_out_ = 0;
  if (!line.empty()) pending_.append(line) += '\n';
}

/// A writable pipe or socket takes PIPE_BUF bytes at once, even where the descriptor blocks.
/// @return false when bytes are left
bool LineWriter::flush() {
  while (!pending_.empty()) {
    if (may_block_ && !is_writable(stream_)) return false;
    ssize_t count = ::write(stream_, pending_.data(), std::min<size_t>(pending_.size(), PIPE_BUF));
    if (count >= 0) {
      pending_.erase(0, static_cast<size_t>(count));
    } else if (errno == EAGAIN) {
      return false;
    } else if (errno != EINTR) {
      pending_.clear();
    }
  }
  return true;
}

}  // namespace olt
