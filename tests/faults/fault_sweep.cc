#include "tests/faults/fault_sweep.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <vector>

namespace olt::faults {

namespace {

/// One way for a call to fail.
struct FailureMode {
  const char *call;
  int error;
  bool may_last;
};

constexpr bool kOnce = false;
constexpr bool kOnceAndLasting = true;

constexpr FailureMode kFailureModes[] = {
    {"accept4", EINTR, kOnce},
    {"accept4", ECONNABORTED, kOnce},
    {"accept4", EMFILE, kOnceAndLasting},
    {"bind", EADDRINUSE, kOnceAndLasting},
    {"calloc", ENOMEM, kOnceAndLasting},
    {"chmod", EPERM, kOnceAndLasting},
    {"chown", EPERM, kOnceAndLasting},
    {"close", EIO, kOnceAndLasting},
    {"connect", EINTR, kOnce},
    {"connect", EAGAIN, kOnce},
    {"connect", EACCES, kOnceAndLasting},
    {"connect", ECONNREFUSED, kOnceAndLasting},
    {"epoll_create1", EMFILE, kOnceAndLasting},
    {"epoll_ctl", ENOSPC, kOnceAndLasting},
    {"epoll_wait", EINTR, kOnce},
    {"eventfd", EMFILE, kOnceAndLasting},
    {"fchmod", EPERM, kOnceAndLasting},
    {"fchown", EPERM, kOnceAndLasting},
    {"fcntl", EINVAL, kOnceAndLasting},
    {"fdopendir", ENOMEM, kOnceAndLasting},
    {"flock", EINTR, kOnce},
    {"flock", ENOLCK, kOnceAndLasting},
    {"fstat", EIO, kOnceAndLasting},
    {"fstatat", EIO, kOnceAndLasting},
    {"fsync", EIO, kOnceAndLasting},
    {"getrlimit", EINVAL, kOnceAndLasting},
    {"getsockopt", EINVAL, kOnceAndLasting},
    {"ioctl", EINVAL, kOnceAndLasting},
    {"linkat", EMLINK, kOnceAndLasting},
    {"listen", EADDRINUSE, kOnceAndLasting},
    {"lstat", EIO, kOnceAndLasting},
    {"mkdir", ENOSPC, kOnceAndLasting},
    {"mkdirat", ENOSPC, kOnceAndLasting},
    {"mmap", ENOMEM, kOnceAndLasting},
    {"munmap", ENOMEM, kOnceAndLasting},
    {"open", EMFILE, kOnceAndLasting},
    {"openat", EMFILE, kOnceAndLasting},
    {kNew, ENOMEM, kOnceAndLasting},
    {"ppoll", EINTR, kOnce},
    {"ppoll", ENOMEM, kOnceAndLasting},
    {"read", EINTR, kOnce},
    {"read", EIO, kOnceAndLasting},
    {"read", kShort, kOnceAndLasting},
    {"readdir", EIO, kOnceAndLasting},
    {"readlink", EACCES, kOnceAndLasting},
    {"readlinkat", EIO, kOnceAndLasting},
    {"recv", EINTR, kOnce},
    {"recv", EAGAIN, kOnce},
    {"recv", ENOMEM, kOnceAndLasting},
    {"recv", ECONNRESET, kOnceAndLasting},
    {"recv", kShort, kOnceAndLasting},
    {"renameat", EIO, kOnceAndLasting},
    {"sendmsg", EINTR, kOnce},
    {"sendmsg", EAGAIN, kOnce},
    {"sendmsg", ENOBUFS, kOnceAndLasting},
    {"sendmsg", EPIPE, kOnceAndLasting},
    {"sendmsg", kShort, kOnceAndLasting},
    {"setrlimit", EPERM, kOnceAndLasting},
    {"setsockopt", ENOMEM, kOnceAndLasting},
    {"socket", EMFILE, kOnceAndLasting},
    {"socketpair", EMFILE, kOnceAndLasting},
    {"stat", EIO, kOnceAndLasting},
    {"timerfd_create", EMFILE, kOnceAndLasting},
    {"timerfd_settime", EINVAL, kOnceAndLasting},
    {"unlink", EBUSY, kOnceAndLasting},
    {"unlinkat", EBUSY, kOnceAndLasting},
    {"write", EINTR, kOnce},
    {"write", ENOSPC, kOnceAndLasting},
    {"write", kShort, kOnceAndLasting},
};

/// @return how often the fault was reached
int sweep_one(const Sweep &sweep, const FailureMode &mode, bool lasting) {
  int reached = 0;
  for (int nth = 1;; ++nth) {
    Plan plan{.call = mode.call, .error = mode.error, .nth = nth, .lasting = lasting};
    SCOPED_TRACE(describe(plan));
    if (!sweep.scenario(plan)) return reached;
    ++reached;
    if (testing::Test::HasFailure()) return reached;
  }
}

}  // namespace

bool is_harmless(const Plan &plan) {
  return plan.error == EINTR || plan.error == EAGAIN || plan.error == ECONNABORTED ||
         plan.error == kShort;
}

bool is_shortage(const Plan &plan) {
  return plan.error == EMFILE || plan.error == ENOMEM || plan.error == ENOBUFS;
}

std::string describe(const Plan &plan) {
  return plan.call + " number " + std::to_string(plan.nth) + (plan.lasting ? " and on: " : ": ") +
         (plan.error == kShort ? "one byte" : std::strerror(plan.error));
}

void lower_descriptor_limit() {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = std::min<rlim_t>(limit.rlim_max - 1, limit.rlim_cur);
  setrlimit(RLIMIT_NOFILE, &limit);
}

void run(const Sweep &sweep) {
  std::set<std::string> made;
  int reached = 0;
  for (const FailureMode &mode : kFailureModes) {
    if (!sweep.allocations && std::strcmp(mode.call, kNew) == 0) continue;
    for (bool lasting : {false, true}) {
      if (lasting && !(mode.may_last && sweep.lasting)) continue;
      int times = sweep_one(sweep, mode, lasting);
      if (times > 0) made.insert(mode.call);
      reached += times;
    }
  }
  testing::Test::RecordProperty("faults", reached);
  EXPECT_EQ(made, sweep.calls);
}

}  // namespace olt::faults
