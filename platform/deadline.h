/// The moment at which an exchange has taken too long.
#ifndef OLT_PLATFORM_DEADLINE_H
#define OLT_PLATFORM_DEADLINE_H

#include <chrono>
#include <cstdint>

namespace olt::platform {

/// Counts on the monotonic clock from its construction.
class Deadline {
 public:
  explicit Deadline(uint32_t seconds);

  std::chrono::nanoseconds elapsed() const;
  /// Zero or less when the deadline has passed.
  std::chrono::nanoseconds remaining() const;

  /// Waits until the socket is ready for the poll events, whatever signals arrive. Errors count
  /// as ready: the next call on the socket reports them.
  /// @return false when the deadline passed first
  bool wait(int socket, short events) const;

  /// Sleeps for the duration or until the deadline. @return false when the deadline has passed
  bool sleep(std::chrono::nanoseconds duration) const;

 private:
  std::chrono::steady_clock::time_point start_;
  std::chrono::seconds limit_;
};

}  // namespace olt::platform

#endif
