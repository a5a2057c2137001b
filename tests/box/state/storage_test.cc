// The files of the box: always whole, and refused when damaged.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <random>
#include <thread>

#include "box/state/files.h"
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
  ASSERT_EQ(stat((box.options.state_dir / "saved.json").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600U);
  ASSERT_EQ(stat(box.options.state_dir.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0700U);
}

TEST(Storage, SavedConfigurationIsVersionedJson) {
  TestBox box;
  box.status(
      kUserAccount,
      record(kUserSize, {{0, word(1)}, {kUserNameAt, text("operator")}, {kLevelAAt, word(3)}}));
  box.status(kSaveConfig);
  std::string saved = read_file(box.options.state_dir / "saved.json");
  EXPECT_EQ(saved.find("{\n \"format\": \"oltbox saved.json\",\n \"version\": 1,\n"
                       " \"configuration\": {\n"),
            0U)
      << saved;
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

// ./dev check asks for more moments.
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
  std::string old = read_file(box.options.state_dir / "saved.json");
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
  EXPECT_EQ(read_file(box.options.state_dir / "saved.json"), old);
  EXPECT_FALSE(std::filesystem::exists(box.options.state_dir / ".new"));
  EXPECT_EQ(box.status(kSaveConfig), kOk);
}

TEST(Storage, DamagedFilesAreReportedAndKept) {
  TestBox box;
  box.status(kSaveConfig);
  box.end();
  std::filesystem::path file = box.options.state_dir / "saved.json";
  std::string good = read_file(file);
  const std::string kEnd = "; remove the file or start afresh (--fresh)";

  auto changed = [&good](const std::string &from, const std::string &to) {
    std::string text = good;
    size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
  };
  const std::pair<std::string, std::string> kDamages[] = {
      {"",
       "1:1: syntax error while parsing value - unexpected end of input; expected '[', '{', or a "
       "literal"},
      {"[]", "/: is an array; expected an object"},
      {changed("oltbox saved.json", "oltbox running.json"),
       "/format: is \"oltbox running.json\"; expected \"oltbox saved.json\""},
      {changed("\"version\": 1", "\"version\": 2"),
       "/version: is 2; expected an integer from 1 to 1"},
      {changed("\"configuration\"", "\"konfiguration\""), "/configuration: is missing"},
      {changed("\"level_a\": 1", "\"level_a\": \"1\""),
       "/configuration/system-users/users/0/level_a: is \"1\"; expected an integer from 0 to "
       "4294967295"},
      {changed("\"sntp\": \"00", "\"sntp\": \"0x"),
       "/configuration/system-settings/sntp: is \"0x0000000000000000000000000000000000000...; "
       "expected 88 bytes in hex"},
      {changed("\"sntp\": \"00", "\"sntp\": \""),
       "/configuration/system-settings/sntp: is \"000000000000000000000000000000000000000...; "
       "expected 88 bytes in hex"},
      {changed("\"level\": 6", "\"level\": 8"),
       "/configuration/system-log/logs/0/level: is 8; expected an integer from 0 to 7"},
      {changed("\"module\": 22", "\"module\": 3"),
       "/configuration/system-log/logs/0/module: is 3; expected 2 or 22"},
      {changed("\"system-log\"", "\"system-lug\""),
       "/configuration/system-lug: is unknown; expected one of ont-iptv, ont-voice, "
       "ont-wan, pon-authentication, pon-inventory, pon-link, pon-multicast, pon-uni-port, "
       "snmp-olt-rows, snmp-onu-rows, switch-mac, switch-multicast, switch-port, switch-rstp, "
       "switch-statistics, switch-vlan, system-control, system-debug, "
       "system-information, system-log, system-settings, system-update, system-users"},
  };
  for (const auto &[content, line] : kDamages) {
    write_file(file, content);
    EXPECT_EQ(complaint(box), file.string() + ": " + line + kEnd);
    EXPECT_EQ(read_file(file), content);
  }

  write_file(file, good.substr(0, good.size() / 2));
  EXPECT_TRUE(holds(complaint(box), "syntax error while parsing"));
  box.options.fresh = true;
  EXPECT_EQ(complaint(box), "accepted");
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST(Storage, AFamilyMissingFromTheFileStartsFromTheFactory) {
  TestBox box;
  box.status(kSetSnmpParam, Bytes(kSnmpParamSize, 0x11));
  box.status(kUserAccount, record(kUserSize, {{0, word(1)}, {kUserNameAt, text("operator")}}));
  box.status(kSaveConfig);
  box.end();
  std::filesystem::path file = box.options.state_dir / "saved.json";
  std::string saved = read_file(file);
  size_t begin = saved.find("  \"system-users\"");
  size_t end = saved.find("  \"system-settings\"");
  ASSERT_LT(begin, end);
  write_file(file, saved.erase(begin, end - begin));
  box.restart();
  EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, 0x11));
  EXPECT_EQ(box.status(kGetUserByIndex, record(kUserSize, {{kUserIndexAt, word(1)}})), kNotFound);
}

TEST(Storage, OneBoxAtATimeUsesADirectory) {
  TestBox box;
  box.status(kGetOltMac);
  auto begin = std::chrono::steady_clock::now();
  try {
    box::StateDirectory second(box.options.state_dir, 60ms);
    ADD_FAILURE() << "two boxes use one directory";
  } catch (const box::StorageFailure &failure) {
    EXPECT_EQ(failure.what(), box.options.state_dir.string() +
                                  ": another box uses this state directory; end it or name "
                                  "another one");
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
  EXPECT_EQ(complaint(box), (box.folder / "file/state") + ": Not a directory");
  box.options.state_dir = box.folder / "file";
  EXPECT_EQ(complaint(box), (box.folder / "file") + ": Not a directory");
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
  EXPECT_FALSE(std::filesystem::exists(box.options.state_dir / "running.json"));
  EXPECT_FALSE(std::filesystem::exists(box.options.state_dir / "saved.json"));
}

TEST(RunningState, IsNotKeptUnlessAskedFor) {
  TestBox box;
  box.status(kSetSnmpParam, Bytes(kSnmpParamSize, 0x11));
  box.keep();
  EXPECT_FALSE(std::filesystem::exists(box.options.state_dir / "running.json"));
}

TEST(RunningState, DamageIsReported) {
  TestBox box;
  box.options.keep_running_state = true;
  box.status(kUpdateOlt, record(kUpdateHeadSize + 10, {{0, word(100)}}));
  box.keep();
  box.end();
  std::filesystem::path file = box.options.state_dir / "running.json";
  std::string good = read_file(file);
  size_t at = good.find("\"total\": 100");
  ASSERT_NE(at, std::string::npos);
  write_file(file, std::string(good).replace(at, 12, "\"total\": 0"));
  EXPECT_EQ(complaint(box), file.string() +
                                ": /box/families/system-update/olt/total: is 0; expected an "
                                "integer from 1 to 268435456; remove the file or start afresh "
                                "(--fresh)");
}

}  // namespace

}  // namespace olt::test
