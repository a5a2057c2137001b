// The daemon as a process: starting, serving through sockets, faults on the wire, ending.

#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "base/text.h"
#include "capture/reader.h"
#include "platform/olthost.h"
#include "tests/box/support.h"
#include "tests/support/program.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

/// An oltbox process in private folders. Its output goes to files.
class Daemon {
 public:
  Daemon() { setenv("OLT_RUN_DIR", run_dir().c_str(), 1); }
  Daemon(const Daemon &) = delete;
  Daemon &operator=(const Daemon &) = delete;
  ~Daemon() {
    if (pid_ > 0) kill(SIGKILL);
  }

  std::string run_dir() const { return folder / "run"; }
  std::string output() const { return read_file(folder / "output"); }
  std::string errors() const { return read_file(folder / "errors"); }

  void launch(std::vector<std::string> options) {
    options.insert(options.begin(), OLTBOX);
    std::string output = folder.write("output", "");
    std::string errors = folder.write("errors", "");
    pid_ = fork();
    if (pid_ != 0) return;
    dup2(open(output.c_str(), O_WRONLY), STDOUT_FILENO);
    dup2(open(errors.c_str(), O_WRONLY), STDERR_FILENO);
    execute(options, {});
  }

  /// Starts it in its folders and waits until it serves.
  void start(std::vector<std::string> options = {}) {
    for (const char *argument : {"--run-dir", "--state-dir"}) {
      options.emplace_back(argument);
      options.push_back(folder / (argument == std::string("--run-dir") ? "run" : "state"));
    }
    launch(std::move(options));
    auto deadline = steady_clock::now() + 30s;
    while (output().find("oltbox: serving") == std::string::npos) {
      if (steady_clock::now() > deadline) throw std::runtime_error("not ready: " + errors());
      std::this_thread::sleep_for(2ms);
    }
  }

  /// @return its exit status, or 128 + the signal that ended it.
  int wait() {
    int status = wait_for(pid_);
    pid_ = -1;
    return status;
  }

  pid_t pid() const { return pid_; }

  int kill(int signal) { return end_child(pid_, signal); }

  int run(const std::vector<std::string> &options) {
    launch(options);
    return wait();
  }

  Folder folder;

 private:
  pid_t pid_ = -1;
};

struct Result {
  int32_t transport = -1;
  uint32_t status = 0;
  Bytes reply;
};

Result ask(Module module, uint32_t type, Bytes request = {}, uint32_t timeout = 20) {
  void *reply = nullptr;
  uint16_t length = 0;
  uint32_t handle = 0;
  uint16_t status = 0;
  Result result;
  result.transport =
      platmsg_syn_result(type, module, request.data(), static_cast<uint32_t>(request.size()),
                         &reply, &length, &handle, &status, 0, timeout);
  result.status = status;
  if (handle == 0) return result;
  const auto *bytes = static_cast<const uint8_t *>(reply);
  result.reply.assign(bytes, bytes + length);
  IPC_Free(handle);
  return result;
}

/// To the main module.
Result ask(uint32_t type, Bytes request = {}, uint32_t timeout = 20) {
  return ask(kMainModule, type, std::move(request), timeout);
}

std::string command(std::string_view json) {
  return characters(ask(kControlModule, kControlCommand, text(json)).reply);
}

std::vector<std::string> sockets_in(const std::string &directory) {
  std::vector<std::string> names;
  for (const auto &entry : std::filesystem::directory_iterator(directory)) {
    if (entry.is_socket()) names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

TEST(Daemon, AnnouncesItselfAndServesEachModule) {
  Daemon daemon;
  daemon.start();
  EXPECT_EQ(daemon.output(), "oltbox: serving modules 2, 18, 22, 23 in " + daemon.run_dir() + "\n");
  EXPECT_EQ(
      sockets_in(daemon.run_dir()),
      (std::vector<std::string>{"module-1000", "module-18", "module-2", "module-22", "module-23"}));
  EXPECT_EQ(ask(kGetOltMac).reply, hex("02 00 00 00 00 01"));
  EXPECT_EQ(ask(kOamModule, kGetOamSupport).reply, hex("01 00 00 00"));
  EXPECT_EQ(ask(kLogModule, kSetLogLevel, hex("05 00 00 00")).status, kOk);
  EXPECT_EQ(ask(kRstpModule, kSetDebugEnable, hex("05 00 00 00")).status, kOk);
  EXPECT_EQ(ask(kRstpModule, kGetOamSupport).status, kNotServed);
}

TEST(Daemon, WritesListingsIntoTheRunDirectory) {
  Daemon daemon;
  daemon.start();
  Bytes reply = ask(kListBasicInfo).reply;
  ASSERT_EQ(reply.size(), 80U);
  std::string name = characters(slice(reply, kListingNameAt, kListingNameAt + 22));
  EXPECT_EQ(name, "basicinfo-00000001.txt");
  EXPECT_EQ(read_file(std::filesystem::path(daemon.run_dir()) / name).find("Basic information"),
            0U);
}

TEST(Daemon, LimitsTheBytesOfListings) {
  Daemon daemon;
  daemon.start({"--listing-limit", "2000"});
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ask(kListBasicInfo).status, kOk);
  EXPECT_FALSE(std::filesystem::exists(daemon.run_dir() + "/basicinfo-00000002.txt"));
  EXPECT_TRUE(std::filesystem::exists(daemon.run_dir() + "/basicinfo-00000003.txt"));
  EXPECT_EQ(daemon.kill(SIGTERM), 0);
  daemon.start({"--listing-limit", "1"});
  EXPECT_EQ(ask(kListBasicInfo).status, kNotWritten);
}

TEST(Daemon, StopsCleanlyAndQuicklyOnSignals) {
  for (int signal : {SIGTERM, SIGINT}) {
    Daemon daemon;
    daemon.start({"--fault", "type=5 silence"});
    std::thread client([] {
      int32_t transport = ask(kSetInService).transport;
      EXPECT_EQ(transport, kLost) << "the request was not under way when the box ended";
    });
    std::this_thread::sleep_for(100ms);
    auto begin = steady_clock::now();
    EXPECT_EQ(daemon.kill(signal), 0);
    EXPECT_LT(steady_clock::now() - begin, 1s);
    client.join();
    EXPECT_EQ(sockets_in(daemon.run_dir()), std::vector<std::string>());
    EXPECT_EQ(daemon.errors(), "");
  }
}

TEST(Daemon, TakesOverAfterAKillAndKeepsWhatWasSaved) {
  Daemon daemon;
  daemon.start();
  EXPECT_EQ(ask(kSetSnmpParam, Bytes(kSnmpParamSize, 0x11)).status, kOk);
  EXPECT_EQ(ask(kSaveConfig).status, kOk);
  EXPECT_EQ(ask(kSetSnmpParam, Bytes(kSnmpParamSize, 0x22)).status, kOk);
  EXPECT_EQ(daemon.kill(SIGKILL), 128 + SIGKILL);
  EXPECT_EQ(sockets_in(daemon.run_dir()).size(), 5U);
  EXPECT_NE(ask(kGetSnmpParam).transport, 0);
  daemon.start();
  EXPECT_EQ(ask(kGetSnmpParam).reply, Bytes(kSnmpParamSize, 0x11));
  EXPECT_EQ(daemon.kill(SIGTERM), 0);
  daemon.start({"--fresh"});
  EXPECT_EQ(ask(kGetSnmpParam).reply, Bytes(kSnmpParamSize, 0));
}

TEST(Daemon, PutsFaultsOnTheWireWhileOthersAreServed) {
  Daemon daemon;
  daemon.start({"--fault", "type=12 status=300 count=1", "--fault", "type=57 drop count=1",
                "--fault", "type=60 delay_ms=300 count=1", "--fault", "type=61 silence"});
  EXPECT_EQ(ask(kGetOltMac).status, 300U);
  EXPECT_EQ(ask(kGetOltMac).status, kOk);
  EXPECT_EQ(ask(kGetSnmpParam).transport, kLost);
  EXPECT_EQ(ask(kGetSnmpParam).transport, 0);

  auto begin = steady_clock::now();
  EXPECT_EQ(ask(kGetSnmpInfo).reply, Bytes(kSnmpInfoSize));
  EXPECT_GE(steady_clock::now() - begin, 300ms);

  std::atomic<bool> waiting = true;
  std::thread silenced([&waiting] {
    EXPECT_EQ(ask(kGetUpdateStatus, {}, 1).transport, kTimedOut);
    waiting = false;
  });
  int served = 0;
  while (waiting) served += ask(kGetOltMac).status == 0 ? 1 : 0;
  silenced.join();
  EXPECT_GT(served, 10);

  EXPECT_EQ(command(R"({"command":"fault_clear"})"), R"({"ok":true,"cleared":4})");
  EXPECT_EQ(ask(kGetUpdateStatus).reply, hex("00 00 00 00"));
}

TEST(Daemon, CountsWhatItsServerSees) {
  Daemon daemon;
  daemon.start();
  ask(kGetOltMac);
  ask(kUnknownType);
  std::string counters = command(R"({"command":"counters"})");
  EXPECT_EQ(counters.find(R"({"ok":true,"counters":{"exchanges":2,"refused":1,"unserved":1,)"), 0U)
      << counters;
  EXPECT_TRUE(holds(counters, R"("server":{"exchanges":)")) << counters;
  EXPECT_TRUE(holds(counters, R"("refused_peers":0,"broken_frames":0,)")) << counters;
}

TEST(Daemon, SurvivesClientsThatSendRubbishOrDisconnect) {
  Daemon daemon;
  daemon.start();
  std::vector<int> clients;
  for (int i = 0; i < 20; ++i) {
    int client = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    (daemon.run_dir() + "/module-2").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(connect(client, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    Bytes rubbish(static_cast<size_t>(1 + 7 * i), static_cast<uint8_t>(i * 13));
    EXPECT_GT(send(client, rubbish.data(), rubbish.size(), MSG_NOSIGNAL), 0);
    if (i % 2 == 0) {
      close(client);
    } else {
      clients.push_back(client);
    }
  }
  EXPECT_EQ(ask(kGetOltMac).reply, hex("02 00 00 00 00 01"));
  for (int client : clients) close(client);
  EXPECT_EQ(ask(kGetOltMac).reply, hex("02 00 00 00 00 01"));
}

TEST(Daemon, TracesWhenAsked) {
  Daemon daemon;
  daemon.start({"--trace"});
  ask(kGetOltMac);
  std::string output = daemon.output();
  EXPECT_TRUE(holds(output,
                    "Z module 2 type 12 olt-mac: request 0, status 0 ok, reply 6 "
                    "[020000000001]\n"))
      << output;
}

/// A line for each packet: kind, module, type, result, status, record's length.
std::string packets_in(const std::string &path) {
  std::string lines;
  capture::Reader reader = capture::read_capture(path);
  while (std::optional<capture::Packet> packet = reader.next()) {
    EXPECT_EQ("box_daemon_test", packet->program);
    EXPECT_EQ(static_cast<uint32_t>(getpid()), packet->process);
    lines += fmt::format("{} {} {} {:x} {} {}\n", packet->is_answer ? "answer" : "request",
                         packet->module, packet->message_type, packet->result, packet->status,
                         packet->record_length);
  }
  return lines;
}

/// Adds a user with a password.
Bytes user_with_secret() {
  return record(80, {{0, word(1)}, {8, text("bob")}, {40, text("PLANT")}, {72, word(1)}});
}

TEST(Daemon, CapturesEveryExchange) {
  Daemon daemon;
  std::string path = daemon.folder / "box.pcapng";
  std::filesystem::create_directory(daemon.folder / "kept");
  daemon.start({"--capture", path, "--capture-files", daemon.folder / "kept", "--fault",
                "type=57 drop", "--fault", "type=61 silence", "--fault", "type=60 delay_ms=60000",
                "--fault", "type=12 delay_ms=20 count=1"});
  ask(kGetOltMac);
  ask(kUserAccount, user_with_secret());
  ask(kUnknownType);
  EXPECT_EQ(ask(kGetSnmpParam).transport, kLost);
  EXPECT_EQ(ask(kGetUpdateStatus, {}, 1).transport, kTimedOut);
  EXPECT_EQ(ask(kGetSnmpInfo, {}, 1).transport, kTimedOut);
  std::string exported = command(R"({"command":"config_export","offset":0,"secrets":true})");
  EXPECT_TRUE(holds(exported, "topology"));
  ask(kListBasicInfo);
  EXPECT_EQ(daemon.kill(SIGTERM), 0);
  std::string capture = read_file(path);
  EXPECT_FALSE(holds(capture, "PLANT"));
  EXPECT_FALSE(holds(capture, "topology")) << "a configuration";
  EXPECT_TRUE(holds(capture, "config_export"));
  std::string lines = packets_in(path);
  EXPECT_TRUE(
      lines.starts_with("request 2 12 0 0 0\nanswer 2 12 0 0 6\n"
                        "request 2 10 0 0 80\nanswer 2 10 0 0 0\n"
                        "request 2 200 0 0 0\nanswer 2 200 0 1 0\n"
                        "request 2 57 0 0 0\nanswer 2 57 30000 0 0\n"
                        "request 2 61 0 0 0\nanswer 2 61 10000 0 0\n"
                        "request 2 60 0 0 0\nanswer 2 60 10000 0 0\n"
                        "request 1000 1 0 0 53\nanswer 1000 1 0 0 "))
      << lines;
  EXPECT_TRUE(lines.ends_with("\nrequest 2 53 0 0 0\nanswer 2 53 0 0 80\n")) << lines;
  capture::Reader reader = capture::read_capture(path);
  uint32_t run = reader.next()->run;
  std::string kept = fmt::format("{}/{}-{}-0-8.listing", daemon.folder / "kept", run, getpid());
  EXPECT_EQ(read_file(daemon.run_dir() + "/basicinfo-00000001.txt"), read_file(kept));
  EXPECT_NE("", read_file(kept));
}

TEST(Daemon, CapturesSecretsWhenAsked) {
  Daemon daemon;
  setenv("OLT_CAPTURE_SECRETS", "1", 1);
  daemon.start({"--capture", daemon.folder / "box.pcapng"});
  unsetenv("OLT_CAPTURE_SECRETS");
  ask(kUserAccount, user_with_secret());
  EXPECT_EQ(daemon.kill(SIGTERM), 0);
  EXPECT_TRUE(holds(read_file(daemon.folder / "box.pcapng"), "PLANT"));
}

TEST(Daemon, ServesWhenItCannotCapture) {
  Daemon daemon;
  daemon.start({"--capture", daemon.folder / "missing/box.pcapng"});
  EXPECT_EQ(ask(kGetOltMac).reply, hex("02 00 00 00 00 01"));
  EXPECT_EQ(daemon.errors(), "oltbox: " + (daemon.folder / "missing/box.pcapng") +
                                 ": No such file or directory; capture ends\n");
}

TEST(Daemon, CapturesAfterAnotherOneUnderANumber) {
  Daemon daemon;
  daemon.folder.write("box.pcapng", "");
  daemon.start({"--capture", daemon.folder / "box.pcapng", "--capture-limit", "1048576"});
  ask(kGetOltMac);
  EXPECT_EQ(daemon.kill(SIGTERM), 0);
  EXPECT_EQ(daemon.errors(),
            fmt::format("oltbox: {}: exists; the capture is {}\n", daemon.folder / "box.pcapng",
                        daemon.folder / "box-1.pcapng"));
  EXPECT_EQ(packets_in(daemon.folder / "box-1.pcapng"), "request 2 12 0 0 0\nanswer 2 12 0 0 6\n");
}

Result ask_for_piece(uint32_t capture) {
  return ask(kControlModule, kCapturePiece, word(capture));
}

/// Head of a piece: whether it is the last one, exchanges, lost, 0; then a section of 44 bytes.
TEST(Daemon, SendsCapturesInPieces) {
  Daemon daemon;
  daemon.start();
  ask(kGetOltMac);
  EXPECT_EQ(command(R"({"command":"capture_start","type":12,"module":2,"count":2})"),
            R"({"ok":true,"capture":1})");
  EXPECT_EQ(command(R"({"command":"capture_start"})"), R"({"ok":true,"capture":2})");
  Result begin = ask_for_piece(1);
  ASSERT_EQ(begin.reply.size(), 16U + 44U);
  EXPECT_EQ(slice(begin.reply, 0, 24), hex("00000000 00000000 00000000 00000000"
                                           "0a0d0d0a 2c000000"));
  EXPECT_EQ(ask_for_piece(1).reply, hex("00000000 00000000 00000000 00000000"));
  ask(kUnknownType);
  for (int i = 0; i < 3; ++i) ask(kGetOltMac);
  Result end = ask_for_piece(1);
  EXPECT_EQ(slice(end.reply, 0, 20), hex("01000000 02000000 00000000 00000000 01000000"));
  EXPECT_EQ(ask_for_piece(1).status, kNotFound);
  EXPECT_EQ(ask_for_piece(0).status, kNotFound);
  EXPECT_EQ(ask(kControlModule, kCapturePiece, hex("02 00 00")).status, kNotFound);
  EXPECT_EQ(command(R"({"command":"capture_stop","capture":2})"), R"({"ok":true,"capture":2})");
  ask(kGetOltMac);
  // An unknown one and three exchanges of 12, but neither those of the captures nor the last one.
  EXPECT_EQ(slice(ask_for_piece(2).reply, 0, 12), hex("01000000 04000000 00000000"));
  EXPECT_EQ(command(R"({"command":"capture_stop","capture":2})"),
            R"({"ok":false,"error":"/capture: is 2, which has ended"})");
  for (int i = 0; i < 8; ++i) command(R"({"command":"capture_start"})");
  EXPECT_EQ(command(R"({"command":"capture_start"})"),
            R"({"ok":false,"error":"8 captures are read already; expected one to end first"})");
}

TEST(Daemon, CountsWhatNobodyReadsInTimeAsLost) {
  Daemon daemon;
  daemon.start();
  command(R"({"command":"capture_start"})");
  for (int i = 0; i < 100; ++i) ask(kUnknownType, Bytes(60'000, 'r'));
  Bytes capture;
  for (bool is_last = false; !is_last;) {
    Bytes piece = ask_for_piece(1).reply;
    if (word_at(piece, 8) == 31) command(R"({"command":"capture_stop","capture":1})");
    EXPECT_EQ(word_at(piece, 4), 69U);
    EXPECT_EQ(word_at(piece, 8), 31U);
    capture.insert(capture.end(), piece.begin() + 16, piece.end());
    is_last = word_at(piece, 0) == 1;
  }
  EXPECT_LE(capture.size(), 4'194'304U);
  EXPECT_GT(capture.size(), 4'100'000U);
}

TEST(Daemon, LetsAGroupReadListings) {
  Daemon daemon;
  daemon.start({"--group", std::to_string(getegid())});
  ask(kListBasicInfo);
  struct stat status = {};
  ASSERT_EQ(stat((daemon.run_dir() + "/basicinfo-00000001.txt").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640U);
  EXPECT_EQ(status.st_gid, getegid());
}

TEST(Daemon, TakesItsTopologyFromAFile) {
  Daemon daemon;
  write_file(daemon.folder / "box.json", R"({"olt":{"mac":"00:11:22:33:44:56"}})");
  daemon.start({"--topology", daemon.folder / "box.json"});
  EXPECT_EQ(ask(kGetOltMac).reply, hex("00 11 22 33 44 56"));
}

TEST(Daemon, UsesTheUsersDirectoriesByDefault) {
  Daemon daemon;
  setenv("XDG_STATE_HOME", (daemon.folder / "home").c_str(), 1);
  daemon.launch({});
  auto deadline = steady_clock::now() + 30s;
  while (ask(kSaveConfig).transport != 0 && steady_clock::now() < deadline) {
    std::this_thread::sleep_for(5ms);
  }
  EXPECT_TRUE(std::filesystem::exists(daemon.folder / "home/oltmgmt/box/saved.state"));
  EXPECT_EQ(sockets_in(daemon.run_dir()).size(), 5U);
}

TEST(Daemon, RefusesWrongUsageInOneLine) {
  Daemon daemon;
  write_file(daemon.folder / "box.json", R"({"pon":{"interfaces":99}})");
  const std::pair<std::vector<std::string>, std::string> kMistakes[] = {
      {{"--frehs"}, "The following argument was not expected: --frehs"},
      {{"--run-dir"}, "--run-dir: 1 required DIR missing"},
      {{"--listing-limit", "0"},
       "--listing-limit: '0' given; expected a number of bytes from 1 to 4294967295"},
      {{"--listing-limit", "4294967296"},
       "--listing-limit: '4294967296' given; expected a number of bytes from 1 to 4294967295"},
      {{"--listing-limit", "-1"},
       "--listing-limit: '-1' given; expected a number of bytes from 1 to 4294967295"},
      {{"--listing-limit", "64M"},
       "--listing-limit: '64M' given; expected a number of bytes from 1 to 4294967295"},
      {{"--pending-limit", ""},
       "--pending-limit: '' given; expected a number of bytes from 1 to 4294967295"},
      {{"--capture-limit", "1048575", "--capture", daemon.folder / "file"},
       "--capture-limit: '1048575' given; expected a number of bytes, at least 1048576"},
      {{"--capture-limit", "1048576"},
       "--capture-limit and --capture-files are for a capture; expected --capture beside them"},
      {{"--capture-files", "kept"},
       "--capture-limit and --capture-files are for a capture; expected --capture beside them"},
      {{"--capture", daemon.folder / "file", "--capture-files", std::string(200, 'f')},
       "--capture-files: a path of 200 bytes given; expected at most 199"},
      {{"--fault", "type=12"},
       "fault \"type=12\": the fault has no effect; expected a status, a delay_ms, or the action "
       "silence or drop"},
      {{"--group", "no such group"},
       "--group no such group: is no group; expected the name or number of one"},
      {{"--topology", daemon.folder / "box.json"},
       (daemon.folder / "box.json") + ": /pon/interfaces: is 99; expected an integer from 1 to 16"},
  };
  for (auto [options, line] : kMistakes) {
    options.insert(options.begin(), {"--state-dir", daemon.folder / "state"});
    EXPECT_EQ(daemon.run(options), 2);
    EXPECT_EQ(daemon.errors(), "oltbox: " + line + "\n");
    EXPECT_EQ(daemon.output(), "");
  }
  EXPECT_FALSE(std::filesystem::exists(daemon.run_dir()));
  EXPECT_FALSE(std::filesystem::exists(daemon.folder / "state"));
}

TEST(Daemon, PrintsHelpAndVersion) {
  Daemon daemon;
  EXPECT_EQ(daemon.run({"--version"}), 0);
  EXPECT_EQ(daemon.output().find("oltbox 0."), 0U) << daemon.output();
  EXPECT_EQ(daemon.run({"--help"}), 0);
  for (const char *option : {"--run-dir", "--state-dir", "--topology", "--group", "--fault",
                             "--trace", "--fresh", "--listing-limit", "--capture",
                             "--capture-limit", "--capture-files", "--version", "--help"}) {
    EXPECT_TRUE(holds(daemon.output(), option)) << option;
  }
}

TEST(Daemon, LeavesABusyRunDirectoryAlone) {
  Daemon daemon;
  daemon.start();
  Daemon second;
  EXPECT_EQ(second.run({"--run-dir", daemon.run_dir(), "--state-dir", second.folder / "state"}), 1);
  std::string errors = second.errors();
  EXPECT_EQ(errors.find("oltbox: "), 0U) << errors;
  EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1) << errors;
  setenv("OLT_RUN_DIR", daemon.run_dir().c_str(), 1);
  EXPECT_EQ(ask(kGetOltMac).reply, hex("02 00 00 00 00 01"));
}

TEST(Daemon, WaitsAWhileForAStateDirectoryInUse) {
  Daemon daemon;
  daemon.start();
  Daemon second;
  auto begin = steady_clock::now();
  EXPECT_EQ(second.run({"--run-dir", second.run_dir(), "--state-dir", daemon.folder / "state"}), 1);
  EXPECT_GE(steady_clock::now() - begin, 5s);
  EXPECT_EQ(second.errors(), "oltbox: " + (daemon.folder / "state") + ": process " +
                                 std::to_string(daemon.pid()) +
                                 " (oltbox) uses this state directory; end it or name another "
                                 "one\n");
}

}  // namespace

}  // namespace olt::test
