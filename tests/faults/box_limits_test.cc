// The daemon at the limits of the system: files that may not grow, streams that nobody reads, and
// many clients when it is told to stop.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "base/descriptor.h"
#include "platform/olthost.h"
#include "tests/support/folder.h"
#include "tests/support/program.h"

namespace {

using namespace std::chrono_literals;
using olt::Descriptor;
using olt::test::Folder;
using olt::test::read_file;
using std::chrono::steady_clock;

constexpr uint32_t kMain = 2;
constexpr uint32_t kRestore = 7;
constexpr uint32_t kSave = 8;
constexpr uint32_t kSetPonRate = 56;
constexpr uint16_t kStorage = 8;

/// An oltbox process.
class BoxProcess {
 public:
  /// Returns when it serves; prepare runs in the child first.
  void start(const std::vector<std::string> &options, const std::function<void()> &prepare) {
    setenv("OLT_RUN_DIR", run_dir().c_str(), 1);
    std::vector<std::string> command = {OLTBOX, "--run-dir", run_dir(), "--state-dir",
                                        folder / "state"};
    command.insert(command.end(), options.begin(), options.end());
    pid_ = fork();
    if (pid_ == 0) {
      prepare();
      olt::test::execute(command, {});
    }
    auto deadline = steady_clock::now() + 30s;
    while (!connected().is_open()) {
      if (steady_clock::now() > deadline) throw std::runtime_error("oltbox does not serve");
      std::this_thread::sleep_for(2ms);
    }
  }
  BoxProcess() = default;
  BoxProcess(const BoxProcess &) = delete;
  BoxProcess &operator=(const BoxProcess &) = delete;
  ~BoxProcess() {
    if (pid_ > 0) end(SIGKILL);
  }

  std::string run_dir() const { return folder / "run"; }

  int end(int signal) { return olt::test::end_child(pid_, signal); }

  /// A connection to module 2; not open when there is none.
  Descriptor connected() const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    (run_dir() + "/module-2").copy(address.sun_path, sizeof address.sun_path - 1);
    Descriptor client(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    bool made =
        connect(client.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    return made ? std::move(client) : Descriptor();
  }

  Folder folder;

 private:
  pid_t pid_ = -1;
};

/// @return the status, or 0xffff when the exchange failed.
uint16_t status_of(uint32_t type, std::vector<uint8_t> request = {}) {
  uint16_t status = 0;
  int32_t result =
      platmsg_syn_result(type, kMain, request.data(), static_cast<uint32_t>(request.size()),
                         nullptr, nullptr, nullptr, &status, 1, 20);
  return result == 0 ? status : 0xffff;
}

void limit_files_to(rlim_t bytes) {
  rlimit limit{.rlim_cur = bytes, .rlim_max = bytes};
  setrlimit(RLIMIT_FSIZE, &limit);
}

void send_to(int stream, const std::string &path) {
  dup2(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), stream);
}

TEST(BoxLimits, AFileSizeLimitFailsTheSaveAndKeepsTheOldState) {
  BoxProcess box;
  box.start({}, [] {});
  EXPECT_EQ(status_of(kSetPonRate, std::vector<uint8_t>(136, 0x11)), 0);
  EXPECT_EQ(status_of(kSave), 0);
  EXPECT_EQ(box.end(SIGTERM), 0);
  std::string saved = read_file(box.folder / "state/saved.state");
  ASSERT_GT(saved.size(), 1000U);

  box.start({}, [] { limit_files_to(1000); });
  EXPECT_EQ(status_of(kSetPonRate, std::vector<uint8_t>(136, 0x22)), 0);
  EXPECT_EQ(status_of(kSave), kStorage);
  EXPECT_EQ(read_file(box.folder / "state/saved.state"), saved);
  EXPECT_EQ(status_of(kRestore), 0);
  EXPECT_EQ(box.end(SIGTERM), 0);
}

// A trace line has some 50 bytes, and the pipe takes 64 KiB.
TEST(BoxLimits, ATraceThatNobodyReadsHoldsUpNobody) {
  BoxProcess box;
  int trace[2];
  ASSERT_EQ(pipe2(trace, O_CLOEXEC), 0);
  box.start({"--trace"}, [&] { dup2(trace[1], STDOUT_FILENO); });
  close(trace[1]);
  for (int i = 0; i < 4000; ++i) ASSERT_EQ(status_of(12), 0) << i;
  EXPECT_EQ(box.end(SIGTERM), 0);
  std::string text;
  char part[4096];
  for (ssize_t count = 0; (count = read(trace[0], part, sizeof part)) > 0;) {
    text.append(part, static_cast<size_t>(count));
  }
  close(trace[0]);
  EXPECT_EQ(text.find("oltbox: serving modules"), 0U);
  auto lines = std::count(text.begin(), text.end(), '\n');
  EXPECT_GT(lines, 100);
  EXPECT_LT(lines, 4000);
  EXPECT_EQ(text.back(), '\n');
}

TEST(BoxLimits, EventsHaveARate) {
  BoxProcess box;
  std::string errors = box.folder / "errors";
  box.start({}, [&] { send_to(STDERR_FILENO, errors); });
  auto begin = steady_clock::now();
  for (int i = 0; i < 3000; ++i) {
    Descriptor client = box.connected();
    ASSERT_EQ(send(client.get(), "garbage", 7, MSG_NOSIGNAL), 7);
  }
  EXPECT_EQ(status_of(12), 0);
  EXPECT_EQ(box.end(SIGTERM), 0);
  auto seconds = std::chrono::duration_cast<std::chrono::seconds>(steady_clock::now() - begin);
  std::string text = read_file(errors);
  auto lines = std::count(text.begin(), text.end(), '\n');
  EXPECT_GE(lines, 100);
  EXPECT_LE(lines, 102 * (seconds.count() + 2));
  EXPECT_NE(text.find(" lines left out\n"), std::string::npos);
}

TEST(BoxLimits, GarbageOnAClosedStandardErrorHarmsNobody) {
  BoxProcess box;
  box.start({"--trace"}, [] {
    for (int number : {0, 1, 2}) close(number);
  });
  for (int i = 0; i < 10; ++i) {
    Descriptor client = box.connected();
    ASSERT_EQ(send(client.get(), "garbage", 7, MSG_NOSIGNAL), 7);
    EXPECT_EQ(status_of(12), 0);
  }
  EXPECT_EQ(box.end(SIGTERM), 0);
}

TEST(BoxLimits, IdleClientsDoNotDelayTheEnd) {
  BoxProcess box;
  box.start({}, [] {});
  std::vector<Descriptor> clients;
  for (int i = 0; i < 500; ++i) clients.push_back(box.connected());
  EXPECT_EQ(status_of(12), 0);
  auto begin = steady_clock::now();
  EXPECT_EQ(box.end(SIGTERM), 0);
  EXPECT_LT(steady_clock::now() - begin, 1s);
}

}  // namespace
