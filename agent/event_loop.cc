#include "agent/event_loop.h"

// The headers of net-snmp need this order.
#include <net-snmp/net-snmp-config.h>
//
#include <net-snmp/net-snmp-includes.h>
//
#include <net-snmp/agent/net-snmp-agent-includes.h>
#include <net-snmp/library/large_fd_set.h>
//
#include <sched.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace olt::agent {

namespace {

/// On which this process may run.
unsigned processors() {
  cpu_set_t set;
  return sched_getaffinity(0, sizeof set, &set) == 0 ? static_cast<unsigned>(CPU_COUNT(&set)) : 1;
}

class DescriptorSet {
 public:
  DescriptorSet() { netsnmp_large_fd_set_init(&set_, FD_SETSIZE); }
  DescriptorSet(const DescriptorSet &) = delete;
  DescriptorSet &operator=(const DescriptorSet &) = delete;
  ~DescriptorSet() { netsnmp_large_fd_set_cleanup(&set_); }

  netsnmp_large_fd_set *get() { return &set_; }

 private:
  netsnmp_large_fd_set set_{};
};

}  // namespace

EventLoop::EventLoop() : watch_(processors()) {}

void EventLoop::add(int descriptor, std::function<void()> handler) {
  handlers_.push_back(std::move(handler));
  polled_.resize(handlers_.size());
  polled_.back() = {descriptor, POLLIN, 0};
}

void EventLoop::round() {
  if (wait() > 0) {
    dispatch();
  } else {
    snmp_timeout();
  }
  run_alarms();
  netsnmp_check_outstanding_agent_requests();
}

int EventLoop::wait() {
  int ready = poll(polled_.data(), polled_.size(), 0);
  if (ready != 0) return ready;
  watch_.begin(Watch::Clock::now());
  while (ready == 0 && watch_.goes_on(Watch::Clock::now())) {
    sched_yield();
    ready = poll(polled_.data(), polled_.size(), 0);
  }
  if (ready == 0) ready = block();
  bool is_request =
      std::any_of(polled_.begin() + static_cast<std::ptrdiff_t>(handlers_.size()), polled_.end(),
                  [](const pollfd &session) { return session.revents != 0; });
  watch_.end(Watch::Clock::now(), is_request);
  return ready;
}

int EventLoop::block() {
  std::optional<timespec> timeout = find_sessions();
  return ppoll(polled_.data(), polled_.size(), timeout ? &*timeout : nullptr, nullptr);
}

std::optional<timespec> EventLoop::find_sessions() {
  DescriptorSet sessions;
  int end = 0;
  timeval timeout{};
  int is_endless = 1;
  snmp_select_info2(&end, sessions.get(), &timeout, &is_endless);
  polled_.resize(handlers_.size());
  for (int descriptor = 0; descriptor < end; ++descriptor) {
    if (NETSNMP_LARGE_FD_ISSET(descriptor, sessions.get())) {
      polled_.push_back({descriptor, POLLIN, 0});
    }
  }
  if (is_endless != 0) return std::nullopt;
  return timespec{timeout.tv_sec, static_cast<long>(timeout.tv_usec) * 1000};
}

void EventLoop::dispatch() {
  DescriptorSet readable;
  bool has_ended = false;
  for (size_t i = 0; i < polled_.size(); ++i) {
    const pollfd &one = polled_[i];
    if (one.revents == 0) continue;
    if (i < handlers_.size()) {
      handlers_[i]();
    } else {
      NETSNMP_LARGE_FD_SET(one.fd, readable.get());
      has_ended = has_ended || one.revents != POLLIN;
    }
  }
  snmp_read2(readable.get());
  // The number of its descriptor may soon be that of another one.
  if (has_ended) polled_.resize(handlers_.size());
}

}  // namespace olt::agent
