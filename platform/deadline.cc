#include "platform/deadline.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <ctime>

namespace olt::platform {

namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;
using namespace std::chrono_literals;

// The kernel may end a long wait late by a thousandth of its length (by a 200th in a niced
// process), which is too late for us: the last second is a wait of its own.
nanoseconds slice(nanoseconds remaining) {
  return remaining > 2s ? std::min<nanoseconds>(remaining - 1s, 1h) : remaining;
}

timespec to_timespec(nanoseconds duration) {
  auto whole = std::chrono::duration_cast<seconds>(duration);
  timespec result{};
  result.tv_sec = static_cast<time_t>(whole.count());
  result.tv_nsec = static_cast<long>((duration - whole).count());
  return result;
}

}  // namespace

Deadline::Deadline(uint32_t seconds) : start_(std::chrono::steady_clock::now()), limit_(seconds) {}

nanoseconds Deadline::elapsed() const {
  return std::chrono::steady_clock::now() - start_;
}

nanoseconds Deadline::remaining() const {
  return limit_ - elapsed();
}

bool Deadline::wait(int socket, short events) const {
  for (;;) {
    nanoseconds left = remaining();
    if (left <= 0ns) return false;
    pollfd watched{.fd = socket, .events = events, .revents = 0};
    timespec limit = to_timespec(slice(left));
    int ready = ppoll(&watched, 1, &limit, nullptr);
    if (ready > 0 || (ready < 0 && errno != EINTR)) return true;
  }
}

bool Deadline::sleep(nanoseconds duration) const {
  nanoseconds left = remaining();
  if (left <= 0ns) return false;
  timespec limit = to_timespec(std::min(duration, left));
  ppoll(nullptr, 0, &limit, nullptr);
  return true;
}

}  // namespace olt::platform
