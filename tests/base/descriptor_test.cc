// Descriptors and the numbers of the standard streams. Each case runs in a child process.

#include "base/descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <functional>

namespace olt::test {

namespace {

/// Runs the body in a child without standard streams. @return the exit status: the body's result.
int without_streams(const std::function<int()> &body) {
  pid_t child = fork();
  if (child == 0) {
    for (int number : {0, 1, 2}) close(number);
    _exit(body());
  }
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return WEXITSTATUS(status);
}

TEST(Descriptor, CanBeMovedAboveTheStandardStreams) {
  EXPECT_EQ(without_streams([] {
              Descriptor low(open("/dev/null", O_RDWR));
              if (low.get() != 0) return 1;
              Descriptor high = above_standard_streams(std::move(low));
              bool moved = high.get() > 2 && fcntl(0, F_GETFD) == -1;
              return moved && (fcntl(high.get(), F_GETFD) & FD_CLOEXEC) != 0 ? 0 : 2;
            }),
            0);
  int number = open("/dev/null", O_RDWR);
  EXPECT_EQ(above_standard_streams(Descriptor(number)).get(), number);
  EXPECT_FALSE(above_standard_streams(Descriptor()).is_open());
}

TEST(Descriptor, StandardStreamsCanBeFilled) {
  EXPECT_EQ(without_streams([] {
              fill_standard_streams();
              for (int number : {0, 1, 2}) {
                if (fcntl(number, F_GETFD) != 0) return 1;
                if (write(number, "", 1) != (number == 2 ? 1 : -1)) return 2;
              }
              return 0;
            }),
            0);
}

}  // namespace

}  // namespace olt::test
