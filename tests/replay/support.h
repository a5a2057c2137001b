/// A running oltreplay, and requests to it.
#ifndef OLT_TESTS_REPLAY_SUPPORT_H
#define OLT_TESTS_REPLAY_SUPPORT_H

#include <gtest/gtest.h>
#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/end_to_end/running_box.h"
#include "tests/support/bytes.h"
#include "tests/support/capture_bytes.h"

namespace olt::test {

// Statuses of requests that no recorded exchange answers, as docs/replay.md lists them.
inline constexpr uint16_t kNoListing = 65532;
inline constexpr uint16_t kNotNext = 65533;
inline constexpr uint16_t kNotRecorded = 65534;

struct Answer {
  int32_t result = -1;
  uint32_t status = 0;
  Bytes reply;

  bool operator==(const Answer &) const = default;
};
void PrintTo(const Answer &answer, std::ostream *stream);

Answer reply(Bytes bytes);
Answer status(uint32_t status);
Answer failure(int32_t result);

Answer ask(uint32_t type, Bytes request = {}, uint32_t module = 2, uint32_t timeout = 20,
           bool no_reply = false);

/// Starts a child process; it exits with 0 when the body returned true.
pid_t start_child(const std::function<bool()> &body);

/// Runs the body in a child process. @return whether it returned true there
bool in_child(const std::function<bool()> &body);

class ReplayTest : public testing::Test {
 protected:
  /// Serves a capture of these exchanges.
  void serve(const std::vector<RecordedExchange> &exchanges,
             const std::vector<std::string> &options = {});
  void serve_file(const std::string &content, const std::vector<std::string> &options = {});

  /// Ends it with SIGTERM and expects the status 0. @return its standard output after the first
  /// line
  std::string end();
  std::string errors() const { return box_.errors(); }

  RunningBox box_;
};

}  // namespace olt::test

#endif
