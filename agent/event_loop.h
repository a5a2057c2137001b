/// Waits for descriptors, and for those of net-snmp.
#ifndef OLT_AGENT_EVENT_LOOP_H
#define OLT_AGENT_EVENT_LOOP_H

#include <poll.h>

#include <functional>
#include <optional>
#include <vector>

#include "agent/watch.h"

namespace olt::agent {

/// Stands in for agent_check_and_process() of net-snmp, which passes each request of the master to
/// itself through two pipes and asks for all descriptors and timers again before each of the three
/// steps. Here that is done before the thread blocks.
class EventLoop {
 public:
  EventLoop();

  /// Whenever the descriptor is readable, the handler is called.
  void add(int descriptor, std::function<void()> handler);

  /// Waits until there is something to be done, and does it.
  void round();

 private:
  /// @return as poll()
  int wait();
  int block();
  /// @return when net-snmp has something to do next; nothing: not before something is readable
  std::optional<timespec> find_sessions();
  void dispatch();

  Watch watch_;
  std::vector<std::function<void()>> handlers_;
  std::vector<pollfd> polled_;  ///< one for each handler, then those of net-snmp's sessions
};

}  // namespace olt::agent

#endif
