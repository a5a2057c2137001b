/// How long a thread looks for its next request before it blocks.
#ifndef OLT_AGENT_WATCH_H
#define OLT_AGENT_WATCH_H

#include <chrono>

namespace olt::agent {

/// Waking an idle processor can take longer than a request does. So while requests follow each
/// other closely, the thread that answers them does not let its processor go idle between them.
class Watch {
 public:
  using Clock = std::chrono::steady_clock;

  /// Longer than the master takes for its next request, even with two processors to be woken.
  static constexpr std::chrono::microseconds kLongest{200};

  /// With a single processor the master could not run meanwhile.
  explicit Watch(unsigned processors) : is_useful_(processors > 1) {}

  /// There is nothing to be done.
  void begin(Clock::time_point now) { begun_ = now; }
  /// Whether to look again, rather than to block.
  bool goes_on(Clock::time_point now) const { return is_on_ && now - begun_ <= kLongest; }
  /// There is something to be done. A short wait for a request makes the next wait a watch.
  void end(Clock::time_point now, bool is_request) {
    is_on_ = is_useful_ && now - begun_ <= kLongest && (is_on_ || is_request);
  }

 private:
  bool is_useful_;
  bool is_on_ = false;
  Clock::time_point begun_{};
};

}  // namespace olt::agent

#endif
