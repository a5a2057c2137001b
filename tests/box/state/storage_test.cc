// The files of the box: always whole, and refused when damaged.

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <random>
#include <thread>

#include "base/bad_input.h"
#include "box/state/files.h"
#include "box/state/seal.h"
#include "tests/box/onu_support.h"
#include "tests/box/support.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;

std::string complaint(TestBox &box) {
  try {
    box.restart();
    return "accepted";
  } catch (const std::exception &error) {
    return error.what();
  }
}

TEST(Storage, IsForTheOwnUserAlone) {
  TestBox box;
  box.status(kSaveConfig);
  struct stat status = {};
  ASSERT_EQ(stat((box.options.state_dir / "saved.state").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600U);
  ASSERT_EQ(stat(box.options.state_dir.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0700U);
}

TEST(Storage, SavedConfigurationHasAReadableForm) {
  TestBox box;
  box.status(
      kUserAccount,
      record(kUserSize, {{0, word(1)}, {kUserNameAt, text("operator")}, {kLevelAAt, word(3)}}));
  box.status(kSaveConfig);
  std::string saved = box.state("saved");
  EXPECT_TRUE(saved.starts_with("{\n \"topology\": {\n  \"version\": 1,\n")) << saved;
  EXPECT_TRUE(holds(saved, " \"configuration\": {\n")) << saved;
  EXPECT_TRUE(holds(saved, "\"name\": \"operator\"")) << saved;
}

void set_all(TestBox &box, uint8_t pattern) {
  box.status(kSetIpAddress, Bytes(kNetworkSize, pattern));
  box.status(kSetSnmpParam, Bytes(kSnmpParamSize, pattern));
  box.status(kSetSnmpInfo, Bytes(kSnmpInfoSize, pattern));
}

// Saves two configurations in turn until it is killed; writes a byte when it has begun.
[[noreturn]] void save_for_ever(TestBox &box, int begun) {
  for (;;) {
    for (uint8_t pattern : {uint8_t{0x11}, uint8_t{0x22}}) {
      set_all(box, pattern);
      box.status(kSaveConfig);
      box.trace.clear();
      if (write(begun, "", 1) != 1) _exit(1);
    }
  }
}

// ./dev trust asks for more moments.
int moments_to_kill_at() {
  const char *wanted = getenv("OLT_TEST_KILLS");
  return wanted == nullptr ? 50 : std::stoi(wanted);
}

TEST(Storage, IsOldOrNewAndWholeWheneverTheBoxIsKilled) {
  TestBox box;
  set_all(box, 0x22);
  auto begin = std::chrono::steady_clock::now();
  box.status(kSaveConfig);
  auto one_save = std::chrono::steady_clock::now() - begin;
  std::minstd_rand random(7);
  std::uniform_real_distribution<double> saves(0, 3);
  int of_each[2] = {0, 0};
  const int moments = moments_to_kill_at();
  for (int moment = 0; moment < moments; ++moment) {
    int begun[2];
    ASSERT_EQ(pipe(begun), 0);
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) save_for_ever(box, begun[1]);
    box.end();
    char byte = 0;
    ASSERT_EQ(read(begun[0], &byte, 1), 1);
    std::this_thread::sleep_for(one_save * saves(random));
    kill(child, SIGKILL);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    close(begun[0]);
    close(begun[1]);

    box.restart();
    for (const char *left_over : {".new", ".old"})
      ASSERT_FALSE(std::filesystem::exists(box.options.state_dir / left_over));
    Bytes network = box.reply(kGetNetwork, Bytes(kNetworkSize));
    uint8_t pattern = network[0];
    ASSERT_TRUE(pattern == 0x11 || pattern == 0x22) << int{pattern};
    ASSERT_EQ(network, Bytes(kNetworkSize, pattern));
    ASSERT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, pattern));
    ASSERT_EQ(box.reply(kGetSnmpInfo), Bytes(kSnmpInfoSize, pattern));
    ++of_each[pattern == 0x11 ? 0 : 1];
  }
  EXPECT_GT(of_each[0], 0);
  EXPECT_GT(of_each[1], 0);
}

TEST(Storage, KeepsTheOldConfigurationWhenTheDiskIsFull) {
  TestBox box;
  box.status(kSetSnmpParam, Bytes(kSnmpParamSize, 0x11));
  ASSERT_EQ(box.status(kSaveConfig), kOk);
  std::string old = read_file(box.options.state_dir / "saved.state");
  box.status(kSetSnmpParam, Bytes(kSnmpParamSize, 0x22));
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // Writes fail beyond 512 bytes, as on a full disk.
    signal(SIGXFSZ, SIG_IGN);
    rlimit limit = {512, 512};
    setrlimit(RLIMIT_FSIZE, &limit);
    uint32_t refused = box.status(kSaveConfig);
    box.ask(kReboot);
    bool fell_back = box.ask(kGetSnmpParam).reply == Bytes(kSnmpParamSize, 0x11);
    _exit(refused == 8 && fell_back ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(read_file(box.options.state_dir / "saved.state"), old);
  EXPECT_FALSE(std::filesystem::exists(box.options.state_dir / ".new"));
  EXPECT_EQ(box.status(kSaveConfig), kOk);
}

constexpr char kAdvice[] = "; remove the file or start afresh (--fresh)";

TEST(Storage, DamagedFilesAreReportedAndKept) {
  TestBox box;
  box.status(kSaveConfig);
  box.end();
  std::filesystem::path file = box.options.state_dir / "saved.state";
  std::string good = read_file(file);
  std::string flipped = good;
  flipped[good.size() / 2] = static_cast<char>(flipped[good.size() / 2] ^ 4);
  const std::pair<std::string, std::string> kDamages[] = {
      {"", "is empty; expected saved state"},
      {"{}", "is damaged or no state file: it does not begin as one"},
      {flipped, "is damaged: its checksum does not match"},
      {good + good, fmt::format("is damaged: it has {} bytes; expected {} by its head",
                                2 * good.size() - 24, good.size() - 24)},
  };
  for (const auto &[content, line] : kDamages) {
    write_file(file, content);
    EXPECT_EQ(complaint(box), file.string() + ": " + line + kAdvice);
    EXPECT_EQ(read_file(file), content);
  }
  for (size_t length = 0; length < good.size(); length += 97) {
    write_file(file, good.substr(0, length));
    EXPECT_NE(complaint(box), "accepted") << length;
  }
  box.options.fresh = true;
  EXPECT_EQ(complaint(box), "accepted");
  EXPECT_FALSE(std::filesystem::exists(file));
}

/// What is wrong with the content of a state file; empty when nothing is.
std::string refusal(std::string_view file) {
  try {
    box::unseal(file);
    return "";
  } catch (const BadInput &error) {
    return error.what();
  }
}

bool is_one_line(const std::string &text) {
  return !text.empty() && text.find('\n') == std::string::npos;
}

// Starting a box costs more than reading the file: it is started for one bit of each byte.
TEST(Storage, EachFlippedBitOfASmallFileIsReported) {
  TestBox box;
  box.options.topology_file = box.folder.write(
      "small.json", R"({"olt":{"ethernet_ports":1},"pon":{"interfaces":1,"onus_per_interface":1,)"
                    R"("uni_ports_per_onu":1,"voice_lines_per_onu":0}})");
  box.status(kSaveConfig);
  box.end();
  std::filesystem::path file = box.options.state_dir / "saved.state";
  const std::string good = read_file(file);
  ASSERT_EQ(refusal(good), "");
  for (size_t bit = 0; bit < 8 * good.size(); ++bit) {
    std::string damaged = good;
    damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ 1 << bit % 8);
    ASSERT_TRUE(is_one_line(refusal(damaged))) << bit;
    if (bit % 8 != bit / 8 % 8) continue;
    write_file(file, damaged);
    std::string line = complaint(box);
    ASSERT_TRUE(is_one_line(line) && holds(line, kAdvice)) << line;
    ASSERT_EQ(read_file(file), damaged);
  }
}

/// Damages to files that are long enough.
class Damager {
 public:
  enum Kind { kBits, kBytes, kCut, kDuplicate, kTransposition };
  static constexpr unsigned kKinds = 5;

  std::string damage(std::string file, Kind kind) {
    size_t length = 1 + below(kMaxLength);
    size_t from = below(file.size() - 2 * kMaxLength);
    switch (kind) {
      case kBits:
        for (size_t i = 0; i <= length % 4; ++i) flip(file[below(file.size())]);
        return file;
      case kBytes:
        for (size_t i = from; i < from + length; ++i) file[i] = static_cast<char>(random_());
        return file;
      case kCut:
        return file.erase(length % 2 == 0 ? from : file.size() - length, length);
      case kDuplicate:
        return file.insert(below(file.size()), file.substr(from, length));
      case kTransposition:
        std::swap_ranges(at(file, from), at(file, from + length), other(file, from, length));
        return file;
    }
    return file;
  }

 private:
  static constexpr size_t kMaxLength = 4096;

  size_t below(size_t limit) { return random_() % limit; }
  void flip(char &byte) { byte = static_cast<char>(byte ^ 1 << below(8)); }

  static std::string::iterator at(std::string &file, size_t offset) {
    return file.begin() + static_cast<std::ptrdiff_t>(offset);
  }

  /// A block of the length that begins behind the one at the offset.
  std::string::iterator other(std::string &file, size_t from, size_t length) {
    size_t behind = from + length;
    return at(file, behind + below(file.size() - behind - length + 1));
  }

  std::mt19937 random_{20'260'131};
};

/// Gives every UNI port of the box information of its own.
void fill_uni_ports(TestBox &box) {
  uint32_t number = 0;
  for (uint32_t interface = 1; interface <= 16; ++interface) {
    for (uint32_t onu = 1; onu <= 64; ++onu) {
      for (uint32_t port = 1; port <= 4; ++port) {
        Bytes information = scattered(kUniPortInfoSize);
        put(information, 0, word(++number));
        ASSERT_EQ(
            box.status(kSetUniPortInfo, target_with(target(interface, onu, port), information)),
            kOk);
      }
    }
  }
}

// A box is started for one in a hundred, with all kinds in turn.
TEST(Storage, TenThousandDamagesOfALargeFileAreReported) {
  TestBox box;
  box.traced = false;
  fill_uni_ports(box);
  ASSERT_EQ(box.status(kSaveConfig), kOk);
  box.end();
  std::filesystem::path file = box.options.state_dir / "saved.state";
  const std::string good = read_file(file);
  ASSERT_GT(good.size(), 200'000U);
  ASSERT_EQ(refusal(good), "");
  Damager damager;
  for (unsigned number = 0; number < 10'000;) {
    auto kind = static_cast<Damager::Kind>(number % Damager::kKinds);
    std::string damaged = damager.damage(good, kind);
    if (damaged == good) continue;
    ASSERT_TRUE(is_one_line(refusal(damaged))) << number;
    if (number++ % 101 != 0) continue;
    write_file(file, damaged);
    std::string line = complaint(box);
    ASSERT_TRUE(is_one_line(line) && holds(line, kAdvice)) << line;
    ASSERT_EQ(read_file(file), damaged);
  }
  write_file(file, good);
  EXPECT_EQ(complaint(box), "accepted");
}

TEST(Storage, OnlyRegularFilesAreRead) {
  TestBox box;
  box.status(kSaveConfig);
  box.end();
  std::filesystem::path file = box.options.state_dir / "saved.state";
  std::filesystem::rename(file, box.folder / "elsewhere");
  std::filesystem::create_symlink(box.folder / "elsewhere", file);
  EXPECT_EQ(complaint(box), file.string() + ": Too many levels of symbolic links");
  std::filesystem::remove(file);
  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
  EXPECT_EQ(complaint(box), file.string() + ": is no regular file; expected one");
  std::filesystem::remove(file);
  std::filesystem::create_directory(file);
  EXPECT_EQ(complaint(box), file.string() + ": is no regular file; expected one");
}

long peak_kilobytes() {
  rusage used = {};
  getrusage(RUSAGE_SELF, &used);
  return used.ru_maxrss;
}

TEST(Storage, AFileThatIsTooLargeIsNotRead) {
  TestBox box;
  box.status(kSaveConfig);
  box.end();
  std::filesystem::path file = box.options.state_dir / "saved.state";
  std::filesystem::resize_file(file, 1 + (size_t{1} << 30));
  long before = peak_kilobytes();
  EXPECT_EQ(complaint(box), file.string() + ": is too large; expected at most 1 GiB");
  EXPECT_LT(peak_kilobytes() - before, 64 * 1024);
}

/// What is said of a saved configuration in which the text was replaced.
std::string complaint_about(const std::string &from, const std::string &to) {
  TestBox box;
  box.status(kUserAccount, record(kUserSize, {{0, word(1)},
                                              {kUserNameAt, text("operator")},
                                              {kPasswordAt, text("planted-secret")}}));
  box.status(kSaveConfig);
  box.end();
  box.damage_state("saved", from, to);
  std::string line = complaint(box);
  EXPECT_FALSE(holds(line, "planted-secret")) << line;
  std::string place = (box.options.state_dir / "saved.state").string() + ": ";
  EXPECT_TRUE(line.starts_with(place) && line.ends_with(kAdvice)) << line;
  if (!line.starts_with(place) || !line.ends_with(kAdvice)) return line;
  return line.substr(place.size(), line.size() - place.size() - sizeof kAdvice + 1);
}

TEST(Storage, ValuesAreCheckedAsOnTheWire) {
  const std::string kUsers = "/configuration/system-users/users";
  EXPECT_EQ(complaint_about("\"configuration\"", "\"konfiguration\""),
            "/configuration: is missing");
  EXPECT_EQ(complaint_about("\"topology\": {", "\"topology\": 7, \"other\": {"),
            "/topology: is 7; expected an object");
  EXPECT_EQ(complaint_about("\"level_a\": 1", "\"level_a\": \"1\""),
            kUsers + "/0/level_a: is \"1\"; expected an integer from 0 to 4294967295");
  EXPECT_EQ(complaint_about("\"operator\"", "\"\""),
            kUsers + "/1/name: is \"\"; expected a name, each once");
  EXPECT_EQ(complaint_about("\"operator\"", "\"admin\""),
            kUsers + "/1/name: is \"admin\"; expected a name, each once");
  EXPECT_EQ(complaint_about("\"operator\"", "\"oper\\u0000tor\""),
            kUsers + "/1/name: is \"oper\\x00tor\"; expected a name, each once");
  EXPECT_EQ(
      complaint_about("\"planted-secret\"", "\"planted-secret-that-is-longer-than-any-password\""),
      kUsers + "/1/password: is not as it should be; expected a text of at most 31 bytes");
  EXPECT_EQ(complaint_about("\"planted-secret\"", "\"planted-\\u0000secret\""),
            kUsers + "/1/password: is not as it should be; expected a text without zeros");
  EXPECT_EQ(complaint_about("\"default\"", "\"de\\u0000fault\""),
            "/configuration/switch-vlan/descriptions/0/text: is \"de\\x00fault\"; expected a text "
            "without zeros");
  std::string user = R"({"name": "x", "password": "planted-secret", "level_a": 0, "level_b": 0},)";
  std::string users;
  for (int i = 0; i < 31; ++i) {
    users += user;
    users.replace(users.rfind("\"x\""), 3, '"' + std::to_string(i) + '"');
  }
  EXPECT_EQ(complaint_about("\"users\": [", "\"users\": [" + users),
            kUsers + "/32: is one too many; expected at most 32 elements");
  EXPECT_EQ(complaint_about("\"level\": 6", "\"level\": 8"),
            "/configuration/system-log/log/level: is 8; expected an integer from 0 to 7");
  EXPECT_TRUE(complaint_about("\"system-log\"", "\"system-lug\"")
                  .starts_with("/configuration/system-lug: is unknown; expected one of "));
}

TEST(Storage, AFamilyMissingFromTheFileStartsFromTheFactory) {
  TestBox box;
  box.status(kSetSnmpParam, Bytes(kSnmpParamSize, 0x11));
  box.status(kUserAccount, record(kUserSize, {{0, word(1)}, {kUserNameAt, text("operator")}}));
  box.status(kSaveConfig);
  box.end();
  std::string saved = box.state("saved");
  size_t begin = saved.find("  \"system-users\"");
  size_t end = saved.find("  \"system-settings\"");
  ASSERT_LT(begin, end);
  box.damage_state("saved", saved.substr(begin, end - begin), "");
  box.restart();
  EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, 0x11));
  EXPECT_EQ(box.status(kGetUserByIndex, record(kUserSize, {{kUserIndexAt, word(1)}})), kNotFound);
}

TEST(Storage, TheStateRemembersItsTopology) {
  TestBox box;
  box.options.topology_file = box.folder.write("six.json", R"({"olt":{"ethernet_ports":6}})");
  box.restart();
  EXPECT_EQ(box.status(kSetPortEnable, port_record(6)), kOk);
  box.status(kSaveConfig);
  box.options.topology_file = "";
  box.restart();
  EXPECT_EQ(box.status(kGetPortEnable, port_record(6)), kOk);
  EXPECT_EQ(box.status(kGetPortEnable, port_record(7)), kNotFound);
}

TEST(Storage, AnotherTopologyIsRefusedUnlessWhatFitsIsAdopted) {
  TestBox box;
  std::vector<std::string> notices;
  box.options.notice = [&](std::string_view line) { notices.emplace_back(line); };
  box.options.topology_file = box.folder.write("six.json", R"({"olt":{"ethernet_ports":6}})");
  box.restart();
  box.status(kSetSnmpParam, Bytes(kSnmpParamSize, 0x11));
  box.status(kSaveConfig);
  box.options.topology_file = box.folder.write("four.json", R"({"olt":{"ethernet_ports":4}})");
  std::string line = complaint(box);
  EXPECT_TRUE(line.starts_with((box.folder / "four.json") + ": the state in " +
                               box.options.state_dir.string() +
                               " was made with another topology, {\"version\":1,"))
      << line;
  EXPECT_TRUE(
      line.ends_with("; expected that one or none, --fresh to forget the state, or --adopt "
                     "to keep what fits"))
      << line;
  EXPECT_TRUE(notices.empty());
  box.options.adopt = true;
  ASSERT_EQ(complaint(box), "accepted");
  EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, 0x11));
  EXPECT_EQ(box.status(kGetPortEnable, port_record(5)), kNotFound);
  ASSERT_FALSE(notices.empty());
  EXPECT_TRUE(holds(notices.front(),
                    "left out: /configuration/switch-port/ports/4: is one too many; "
                    "expected at most 4 elements"))
      << notices.front();
  // From then on the state is the new topology's.
  box.options.adopt = false;
  box.options.topology_file = "";
  ASSERT_EQ(complaint(box), "accepted");
  EXPECT_EQ(box.status(kGetPortEnable, port_record(4)), kOk);
  EXPECT_EQ(box.status(kGetPortEnable, port_record(5)), kNotFound);
}

TEST(Storage, OneBoxAtATimeUsesADirectory) {
  TestBox box;
  box.status(kGetOltMac);
  auto begin = std::chrono::steady_clock::now();
  try {
    box::StateDirectory second(box.options.state_dir, 60ms);
    ADD_FAILURE() << "two boxes use one directory";
  } catch (const box::StorageFailure &failure) {
    std::string program = read_file("/proc/self/comm");
    program.pop_back();
    EXPECT_EQ(failure.what(), box.options.state_dir.string() + ": process " +
                                  std::to_string(getpid()) + " (" + program +
                                  ") uses this state directory; end it or name another one");
  }
  EXPECT_GE(std::chrono::steady_clock::now() - begin, 60ms);

  std::thread ending([&box] {
    std::this_thread::sleep_for(100ms);
    box.end();
  });
  EXPECT_NO_THROW(box::StateDirectory(box.options.state_dir, 20s));
  ending.join();
}

TEST(Storage, BadDirectoriesAreReported) {
  TestBox box;
  write_file(box.folder / "file", "");
  box.options.state_dir = box.folder / "file/state";
  EXPECT_EQ(complaint(box), "state directory \"" + (box.folder / "file/state") +
                                "\" cannot be created: Not a directory");
  box.options.state_dir = box.folder / "file";
  EXPECT_EQ(complaint(box),
            "state directory \"" + (box.folder / "file") + "\" cannot be used: Not a directory");
}

TEST(Storage, DirectoriesThatOthersReachAreRefused) {
  TestBox box;
  box.status(kSaveConfig);
  box.end();
  const std::string path = box.options.state_dir.string();
  const std::string place = "state directory \"" + path + "\" ";
  for (mode_t mode : {0770U, 0707U, 0750U}) {
    ASSERT_EQ(chmod(path.c_str(), mode), 0);
    EXPECT_TRUE(complaint(box).starts_with(place + "is not empty and has mode ")) << mode;
    struct stat status = {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, mode);
  }
  ASSERT_EQ(chmod(path.c_str(), 0700), 0);
  std::filesystem::create_directory_symlink(path, box.folder / "link");
  for (const char *link : {"link", "link/"}) {
    box.options.state_dir = box.folder / link;
    EXPECT_NE(complaint(box), "accepted") << link;
  }
}

TEST(RunningState, ContinuesInTheNextBox) {
  TestBox box;
  box.options.keep_running_state = true;
  box.status(kSetIpAddress, Bytes(kNetworkSize, 0x33));
  box.status(kSetInService);
  box.status(kLogModule, kSetDebugEnable, word(0xABCD));
  box.status(kDebugValue, hex("01000000 05000000 2a000000"));
  box.status(kSwitchDebugValue, record(kSwitchDebugSize, {{0, word(1)}, {24, hex("34 12")}}));
  box.status(kUpdateOnu, record(kUpdateHeadSize + 10, {{0, word(100)}}));
  box.command(R"({"command":"fault_add","fault":{"type":12,"status":5,"from":2,"count":1}})");
  EXPECT_EQ(box.status(kGetOltMac), kOk);
  box.keep();
  box.advance(10s);
  box.restart();
  EXPECT_EQ(box.reply(kGetNetwork, Bytes(kNetworkSize)), Bytes(kNetworkSize, 0x33));
  EXPECT_EQ(box.reply(kDebugValue, hex("00000000 05000000 00000000")),
            hex("00000000 05000000 2a000000"));
  EXPECT_EQ(box.reply(kSwitchDebugValue, Bytes(kSwitchDebugSize)),
            record(kSwitchDebugSize, {{24, hex("34 12")}}));
  EXPECT_EQ(box.reply(kUpdateOnu, record(kUpdateHeadSize + 10, {{0, word(100)}, {4, word(10)}})),
            hex("14000000 14000000"));
  EXPECT_EQ(box.status(kGetOltMac), kExists);
  EXPECT_EQ(box.status(kGetOltMac), kOk);
  EXPECT_EQ(box.command(R"({"command":"fault_list"})"),
            R"({"ok":true,"faults":[{"id":1,"module":0,"type":12,"status":5,"delay_ms":0,)"
            R"("action":"status","from":2,"count":1,"seen":3,"applied":1}]})");
  std::string info = box.basic_info();
  EXPECT_TRUE(holds(info, "0 d 00:00:10\n")) << info;
  EXPECT_TRUE(holds(info, "Micro-kernel in service        yes\n")) << info;
  EXPECT_TRUE(holds(info, "22      0x0000abcd\n")) << info;
  std::string log = box.listing(box.reply(kLogModule, kListLog, word(0)), 0);
  EXPECT_TRUE(holds(log, "2026-01-31T12:00:00Z  notice  2       started\n")) << log;
  EXPECT_FALSE(holds(log, "12:00:10Z  notice  2       started\n")) << log;
}

TEST(RunningState, FallsBackToWhatWasSavedOnReboot) {
  TestBox box;
  box.options.keep_running_state = true;
  box.status(kSetSnmpParam, Bytes(kSnmpParamSize, 0x11));
  box.status(kSaveConfig);
  box.status(kSetSnmpParam, Bytes(kSnmpParamSize, 0x22));
  box.keep();
  box.restart();
  EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, 0x22));
  box.status(kReboot);
  EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, 0x11));
}

TEST(RunningState, IsForgottenWhenStartedAfresh) {
  TestBox box;
  box.options.keep_running_state = true;
  box.status(kSetSnmpParam, Bytes(kSnmpParamSize, 0x11));
  box.status(kSaveConfig);
  box.keep();
  box.options.fresh = true;
  box.restart();
  EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, 0));
  EXPECT_FALSE(std::filesystem::exists(box.options.state_dir / "running.state"));
  EXPECT_FALSE(std::filesystem::exists(box.options.state_dir / "saved.state"));
}

TEST(RunningState, IsNotKeptUnlessAskedFor) {
  TestBox box;
  box.status(kSetSnmpParam, Bytes(kSnmpParamSize, 0x11));
  box.keep();
  EXPECT_FALSE(std::filesystem::exists(box.options.state_dir / "running.state"));
}

TEST(RunningState, DamageIsReported) {
  TestBox box;
  box.options.keep_running_state = true;
  box.status(kUpdateOlt, record(kUpdateHeadSize + 10, {{0, word(100)}}));
  box.keep();
  box.end();
  box.damage_state("running", "\"total\": 100", "\"total\": 0");
  EXPECT_EQ(complaint(box), (box.options.state_dir / "running.state").string() +
                                ": /box/running/system-update/olt/total: is 0; expected an "
                                "integer from 1 to 268435456" +
                                kAdvice);
}

}  // namespace

}  // namespace olt::test
