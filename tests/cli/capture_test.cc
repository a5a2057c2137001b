// oltctl capture, with a running box.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "oltplatform.h"
#include "tests/cli/program.h"
#include "tests/support/bytes.h"

namespace olt::test {
namespace {

using std::chrono::milliseconds;

/// A box, and oltctl with it.
class CaptureCommand : public testing::Test {
 protected:
  void SetUp() override {
    box_ = start({OLTBOX, "--run-dir", run_dir(), "--state-dir", oltctl_.folder() / "box"}, "out");
    EXPECT_TRUE(holds_in_time("out", "serving"));
  }
  void TearDown() override { end(box_, SIGTERM); }

  std::string run_dir() const { return oltctl_.folder() / "run"; }
  std::string file(const std::string &name) const { return oltctl_.folder() / name; }

  /// Starts a program whose output and errors go to files; the latter's name ends with .errors.
  pid_t start(const std::vector<std::string> &command, const std::string &output,
              std::vector<std::string> environment = {}) const {
    int to = open(file(output).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    int errors = open(file(output + ".errors").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    for (std::string &one : private_environment(oltctl_.folder()))
      environment.push_back(std::move(one));
    pid_t child = fork();
    if (child == 0) {
      dup2(to, STDOUT_FILENO);
      dup2(errors, STDERR_FILENO);
      execute(command, environment);
    }
    close(to);
    close(errors);
    return child;
  }

  static int end(pid_t child, int signal) {
    kill(child, signal);
    return wait_for(child);
  }

  bool holds_in_time(const std::string &name, std::string_view part) const {
    for (int i = 0; i < 1000; ++i) {
      if (holds(read_file(file(name)), part)) return true;
      std::this_thread::sleep_for(milliseconds(10));
    }
    return false;
  }

  /// Starts a capture with these words, and waits until the box makes it.
  pid_t capture(std::vector<std::string> words, std::vector<std::string> environment = {}) const {
    words.insert(words.begin(), {OLTCTL, "--box", run_dir(), "capture"});
    pid_t child = start(words, "output", std::move(environment));
    bool is_stdout = words[4] == "-";
    std::string begun = is_stdout ? file("output") : words[4];
    for (int i = 0; i < 1000 && read_file(begun).empty(); ++i)
      std::this_thread::sleep_for(milliseconds(10));
    return child;
  }

  Finished oltctl(std::vector<std::string> words) const {
    words.insert(words.begin(), {"--box", run_dir()});
    return oltctl_(words);
  }

  /// The operations in a capture, each with a blank.
  std::string operations_in(const std::string &name) const {
    Finished shown = oltctl({"show", file(name)});
    EXPECT_EQ("", shown.errors);
    std::string names;
    for (size_t at = shown.output.find(" #"); at != std::string::npos;
         at = shown.output.find(" #", at + 1)) {
      size_t begin = shown.output.find(' ', at + 1) + 1;
      names += shown.output.substr(begin, shown.output.find('\n', begin) - begin) + ' ';
    }
    return names;
  }

  std::string errors() const { return read_file(file("output.errors")); }

 private:
  Oltctl oltctl_;
  pid_t box_ = -1;
};

TEST_F(CaptureCommand, EndsAfterSoManyExchanges) {
  pid_t child = capture({file("one.pcapng"), "--count", "3"});
  EXPECT_EQ(0, oltctl({"get_olt_mac"}).status);
  EXPECT_EQ(0, oltctl({"add_user_level", "bob", "PLANT", "1", "2"}).status);
  EXPECT_EQ(0, oltctl({"get_port_enable", "1", "1"}).status);
  EXPECT_EQ(0, wait_for(child)) << errors();
  EXPECT_EQ("capture: 3 exchanges, 0 lost\n", errors());
  EXPECT_EQ("", read_file(file("output")));
  std::string bytes = read_file(file("one.pcapng"));
  EXPECT_FALSE(holds(bytes, "PLANT"));
  EXPECT_TRUE(holds(bytes, "oltctl/"));
  struct stat found {};
  ASSERT_EQ(0, stat(file("one.pcapng").c_str(), &found));
  EXPECT_EQ(0600U, found.st_mode & 07777);
}

TEST_F(CaptureCommand, EndsWholeWithCtrlC) {
  pid_t child = capture({file("one.pcapng")});
  for (int i = 0; i < 5; ++i) EXPECT_EQ(0, oltctl({"get_olt_mac"}).status);
  EXPECT_EQ(0, end(child, SIGINT));
  EXPECT_EQ("capture: 5 exchanges, 0 lost\n", errors());
  EXPECT_EQ("get_olt_mac get_olt_mac get_olt_mac get_olt_mac get_olt_mac ",
            operations_in("one.pcapng"));
}

TEST_F(CaptureCommand, KeepsItsLinesOutOfTheFileWhenStandardErrorIsClosed) {
  std::string path = file("box.pcapng");
  pid_t child = start({"bash", "-c", "exec 2>&-; exec \"$@\"", "bash", OLTCTL, "--box", run_dir(),
                       "capture", path, "--count", "1"},
                      "output");
  EXPECT_TRUE(holds_in_time("box.pcapng", "oltbox"));
  EXPECT_EQ(oltctl({"get_olt_mac"}).status, 0);
  EXPECT_EQ(wait_for(child), 0);
  EXPECT_FALSE(holds(read_file(path), "capture: "));
}

TEST_F(CaptureCommand, KeepsWhatItsFiltersTake) {
  pid_t one = capture({file("one.pcapng"), "operation=get_olt_mac", "--seconds=86400"});
  pid_t other = capture({file("other.pcapng"), "module=18"});
  oltctl({"get_olt_mac"});
  oltctl({"get_port_enable", "1", "1"});
  oltctl({"fault", "list"});
  EXPECT_EQ(0, end(one, SIGTERM));
  EXPECT_EQ(0, end(other, SIGINT));
  EXPECT_EQ("get_olt_mac ", operations_in("one.pcapng"));
  EXPECT_EQ("", operations_in("other.pcapng"));
}

TEST_F(CaptureCommand, WritesToAPipeAsItGoes) {
  pid_t child = capture({"-"}, {"OLT_CAPTURE_SECRETS=1"});
  EXPECT_EQ(0, oltctl({"add_user_level", "bob", "PLANT", "1", "2"}).status);
  EXPECT_TRUE(holds_in_time("output", "PLANT")) << "while it runs";
  EXPECT_EQ(0, end(child, SIGINT));
  EXPECT_EQ("add_user_level ", operations_in("output"));
}

TEST_F(CaptureCommand, MasksWhatALayoutCallsASecret) {
  write_file(file("own.json"), R"({"version": 1, "name": "own", "records": {"olt_system_network": [
      {"name": "key", "offset": 12, "width": 16, "kind": "padded", "secret": true}]}})");
  pid_t child = capture({file("one.pcapng"), "--count=1"}, {"OLT_LAYOUT=" + file("own.json")});
  EXPECT_EQ(0, oltctl({"get_system_network"}).status);
  EXPECT_EQ(0, wait_for(child)) << errors();
  std::string bytes = read_file(file("one.pcapng"));
  EXPECT_TRUE(holds(bytes, "****************"));
  EXPECT_FALSE(holds(bytes, "*****************"));
}

/// Exchanges of 60,000 bytes, which the box refuses.
void make_long_exchanges(int count) {
  std::vector<uint8_t> request(60'000, 'r');
  for (int i = 0; i < count; ++i) {
    void *reply = nullptr;
    uint16_t length = 0;
    uint32_t handle = 0;
    uint16_t status = 0;
    EXPECT_EQ(0, platmsg_syn_result(200, 2, request.data(), 60'000, &reply, &length, &handle,
                                    &status, 0, 10));
    EXPECT_EQ(1, status);
  }
}

/// While the reader of the pipe does not read, exchanges are lost, and the box goes on.
TEST_F(CaptureCommand, ASlowReaderLosesExchangesAndHoldsUpNobody) {
  std::string pipe = file("pipe");
  ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
  int reader = open(pipe.c_str(), O_RDWR | O_CLOEXEC);
  pid_t child =
      start({"sh", "-c", "exec " OLTCTL " --box " + run_dir() + " capture - >" + pipe}, "output");
  std::string bytes(44, '\0');
  ASSERT_EQ(44, read(reader, bytes.data(), 44)) << "the section";
  setenv("OLT_RUN_DIR", run_dir().c_str(), 1);
  make_long_exchanges(150);
  unsetenv("OLT_RUN_DIR");
  kill(child, SIGINT);
  std::string piece(65'536, '\0');
  fcntl(reader, F_SETFL, O_NONBLOCK);
  auto take = [&] {
    ssize_t count = read(reader, piece.data(), piece.size());
    if (count > 0) bytes.append(piece, 0, static_cast<size_t>(count));
    return count > 0;
  };
  while (errors().empty()) {
    if (!take()) std::this_thread::sleep_for(milliseconds(1));
  }
  EXPECT_EQ(0, wait_for(child));
  while (take()) {
  }
  close(reader);
  unsigned recorded = 0;
  unsigned lost = 0;
  ASSERT_EQ(2, std::sscanf(errors().c_str(), "capture: %u exchanges, %u lost\n", &recorded, &lost));
  EXPECT_EQ(150U, recorded + lost);
  EXPECT_GE(recorded, 69U) << "what the box keeps";
  EXPECT_GE(lost, 60U);
  write_file(file("piped"), bytes);
  Finished shown = oltctl({"show", file("piped"), "module=2"});
  EXPECT_EQ("", shown.errors);
  unsigned requests = 0;
  for (size_t at = shown.output.find("\n> type 200 "); at != std::string::npos;
       at = shown.output.find("\n> type 200 ", at + 1)) {
    ++requests;
  }
  EXPECT_EQ(recorded, requests);
}

TEST_F(CaptureCommand, SaysInOneLineWhyItDoesNotBegin) {
  write_file(file("taken"), "mine");
  const std::pair<std::vector<std::string>, std::string> kMistakes[] = {
      {{}, "no file is given; expected one, or - for a pipe"},
      {{file("taken")}, file("taken") + " exists; expected a name that is free"},
      {{file("no/folder")}, "cannot write " + file("no/folder") + ": No such file or directory"},
      {{"x", "--count", "0"}, "--count: '0' given; expected a number from 1 to 4294967295"},
      {{"x", "--count"}, "--count: '' given; expected a number from 1 to 4294967295"},
      {{"x", "--seconds", "86401"}, "--seconds: '86401' given; expected a number from 1 to 86400"},
      {{"x", "module=no"}, "module: 'no' given; expected a number from 1 to 4294967295"},
      {{"x", "colour=red"},
       "'colour' given; expected operation=NAME, module=N, --count N or --seconds S"},
      {{"x", "operation=read_oam_type"},
       "read_oam_type makes no exchange; expected an operation that does"},
  };
  for (auto [words, line] : kMistakes) {
    words.insert(words.begin(), "capture");
    Finished tried = oltctl(words);
    EXPECT_NE(0, tried.status);
    EXPECT_EQ("capture: " + line + "\n", tried.errors);
    EXPECT_EQ("", tried.output);
  }
  EXPECT_EQ("mine", read_file(file("taken")));
  Finished embedded = oltctl({"--box", "embedded", "capture", "x"});
  EXPECT_EQ(2, embedded.status);
}

}  // namespace
}  // namespace olt::test
