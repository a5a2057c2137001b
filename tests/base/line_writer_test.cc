// Lines to files, pipes that nobody reads, readers that went away, terminals and sockets.

#include "base/line_writer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <sstream>
#include <string>

namespace olt::test {

namespace {

using std::chrono::milliseconds;

/// Two connected descriptors; what is written to the second comes out of the first.
class Stream {
 public:
  enum Kind { kPipe, kSocket, kTerminal };

  explicit Stream(Kind kind) {
    int result = kind == kPipe     ? pipe(ends_)
                 : kind == kSocket ? socketpair(AF_UNIX, SOCK_STREAM, 0, ends_)
                                   : openpty(&ends_[0], &ends_[1], nullptr, nullptr, nullptr);
    EXPECT_EQ(result, 0);
  }
  Stream(const Stream &) = delete;
  Stream &operator=(const Stream &) = delete;
  ~Stream() {
    close_reader();
    close(ends_[1]);
  }

  int writer() const { return ends_[1]; }
  void close_reader() {
    if (ends_[0] >= 0) close(ends_[0]);
    ends_[0] = -1;
  }

  /// What has arrived, without the carriage returns of terminals, which pass bytes on a little
  /// later.
  std::string read_all() const {
    std::string text;
    char part[4096];
    for (pollfd end{.fd = ends_[0], .events = POLLIN, .revents = 0}; poll(&end, 1, 50) > 0;) {
      ssize_t count = read(ends_[0], part, sizeof part);
      if (count <= 0) break;
      text.append(part, static_cast<size_t>(count));
    }
    std::erase(text, '\r');
    return text;
  }

 private:
  int ends_[2] = {-1, -1};
};

class EachStream : public testing::TestWithParam<Stream::Kind> {};

TEST_P(EachStream, TakesLines) {
  Stream stream(GetParam());
  {
    LineWriter writer(stream.writer(), "program");
    writer.write("one");
    writer.write("two");
  }
  EXPECT_EQ(stream.read_all(), "one\ntwo\n");
}

// A write that blocks would hang here: nobody else reads.
TEST_P(EachStream, NeverWaitsForTheReaderAndSaysWhatIsMissing) {
  Stream stream(GetParam());
  int flags = fcntl(stream.writer(), F_GETFL);
  uint64_t written = 0;
  std::string text;
  {
    LineWriter writer(stream.writer(), "program");
    for (; written < 5000; ++written) writer.write(std::string(99, 'x'));
    // The rest of a line that was cut by a full terminal comes first.
    text = stream.read_all();
    writer.write("after");
    text += stream.read_all();
  }
  text += stream.read_all();
  EXPECT_EQ(fcntl(stream.writer(), F_GETFL), flags);
  // A terminal may have room again in between: there may be several notes.
  uint64_t accounted = 0;
  uint64_t notes = 0;
  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line) && line != "after") {
    uint64_t left_out = 0;
    if (std::sscanf(line.c_str(), "program: %lu lines left out", &left_out) == 1) {
      accounted += left_out;
      ++notes;
    } else {
      EXPECT_EQ(line, std::string(99, 'x'));
      ++accounted;
    }
  }
  EXPECT_EQ(line, "after");
  EXPECT_GE(notes, 1U);
  EXPECT_EQ(accounted, written);
}

std::string name_of(const testing::TestParamInfo<Stream::Kind> &kind) {
  const char *names[] = {"pipe", "socket", "terminal"};
  return names[kind.param];
}

INSTANTIATE_TEST_SUITE_P(Streams, EachStream,
                         testing::Values(Stream::kPipe, Stream::kSocket, Stream::kTerminal),
                         name_of);

TEST(LineWriterTest, SaysAtTheEndWhatIsMissing) {
  Stream stream(Stream::kPipe);
  {
    LineWriter writer(stream.writer(), "program", 1, [] { return TimePoint(); });
    writer.write("one");
    writer.write("two");
  }
  EXPECT_EQ(stream.read_all(), "one\nprogram: 1 line left out\n");
}

TEST(LineWriterTest, KeepsToItsRate) {
  Stream stream(Stream::kPipe);
  TimePoint now;
  LineWriter writer(stream.writer(), "program", 2, [&now] { return now; });
  for (const char *line : {"1", "2", "3", "4", "5"}) writer.write(line);
  EXPECT_EQ(stream.read_all(), "1\n2\n");
  now += milliseconds(999);
  writer.write("6");
  EXPECT_EQ(stream.read_all(), "");
  now += milliseconds(1);
  writer.write("7");
  EXPECT_EQ(stream.read_all(), "program: 4 lines left out\n7\n");
  // Setting the clock back must not silence it.
  now -= std::chrono::hours(1);
  writer.write("8");
  writer.write("9");
  writer.write("10");
  EXPECT_EQ(stream.read_all(), "8\n9\n");
}

TEST(LineWriterTest, GoesOnWithoutAReader) {
  signal(SIGPIPE, SIG_IGN);
  Stream stream(Stream::kPipe);
  LineWriter writer(stream.writer(), "program");
  stream.close_reader();
  for (int i = 0; i < 1000; ++i) writer.write("nobody reads this");
  LineWriter closed(-1, "program");
  closed.write("nowhere");
}

TEST(LineWriterTest, WritesLongLinesWhole) {
  Stream stream(Stream::kPipe);
  LineWriter writer(stream.writer(), "program");
  std::string line(50000, 'l');
  writer.write(line);
  EXPECT_EQ(stream.read_all(), line + "\n");
}

TEST(LineWriterTest, AppendsWhereAFileStands) {
  char path[] = "/tmp/olt-lines.XXXXXX";
  int file = mkstemp(path);
  ASSERT_GE(file, 0);
  unlink(path);
  ASSERT_EQ(write(file, "before\n", 7), 7);
  LineWriter(file, "program").write("line");
  ASSERT_EQ(write(file, "behind\n", 7), 7);
  char text[64] = "";
  EXPECT_EQ(pread(file, text, sizeof text, 0), 19);
  EXPECT_STREQ(text, "before\nline\nbehind\n");
  close(file);
}

}  // namespace

}  // namespace olt::test
