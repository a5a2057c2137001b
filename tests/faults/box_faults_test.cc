// What the box keeps, under every failure of a call: the old file or the new one, and it goes on.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>

#include "tests/box/support.h"
#include "tests/faults/fault_sweep.h"

namespace olt::test {

namespace {

using faults::FaultInjector;
using faults::is_harmless;
using faults::Plan;

size_t open_descriptors() {
  std::filesystem::directory_iterator entries("/proc/self/fd");
  return static_cast<size_t>(std::distance(begin(entries), end(entries)));
}

/// The files of a directory, by name, whole.
std::map<std::string, std::string> files_in(const std::filesystem::path &directory) {
  std::map<std::string, std::string> files;
  if (!std::filesystem::exists(directory)) return files;
  for (const auto &entry : std::filesystem::directory_iterator(directory)) {
    files[entry.path().filename()] = read_file(entry.path());
  }
  return files;
}

/// A file that could not be removed may be left under its temporary name.
std::map<std::string, std::string> without_left_overs(std::map<std::string, std::string> files,
                                                      const Plan &plan) {
  if (plan.call == "unlinkat") {
    files.erase(".new");
    files.erase(".old");
  }
  return files;
}

bool is_one_line(const std::string &text) {
  return !text.empty() && text.find('\n') == std::string::npos;
}

/// What the step throws, if anything.
std::string failure_of(const std::function<void()> &step) {
  try {
    step();
    return "";
  } catch (const std::exception &failure) {
    return failure.what();
  }
}

void expect_status(const Plan &plan, uint32_t status) {
  if (is_harmless(plan)) {
    EXPECT_EQ(status, kOk);
  } else {
    EXPECT_TRUE(status == kOk || status == kNotWritten) << status;
  }
}

/// Two boxes with one thing changed, and what they save.
struct Saves {
  explicit Saves(TestBox &box) {
    change(box, 0x22);
    box.status(kSaveConfig);
    after = files_in(box.options.state_dir);
    change(box, 0x11);
    box.status(kSaveConfig);
    before = files_in(box.options.state_dir);
  }

  static void change(TestBox &box, uint8_t pattern) {
    box.status(kSetSnmpParam, Bytes(kSnmpParamSize, pattern));
  }

  std::map<std::string, std::string> before;
  std::map<std::string, std::string> after;
};

TEST(Faults, OfASave) {
  TestBox box;
  box.traced = false;
  Saves saves(box);
  ASSERT_NE(saves.before, saves.after);
  auto scenario = [&](const Plan &plan) {
    size_t descriptors = open_descriptors();
    Saves::change(box, 0x22);
    uint32_t status = 0;
    bool reached = false;
    {
      FaultInjector injector(plan);
      status = box.status(kSaveConfig);
      reached = injector.reached();
    }
    expect_status(plan, status);
    EXPECT_EQ(open_descriptors(), descriptors);
    EXPECT_EQ(without_left_overs(files_in(box.options.state_dir), plan),
              status == kOk ? saves.after : saves.before);
    box.status(kReboot);
    EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, status == kOk ? 0x22 : 0x11));
    Saves::change(box, 0x11);
    EXPECT_EQ(box.status(kSaveConfig), kOk);
    EXPECT_EQ(files_in(box.options.state_dir), saves.before);
    return reached;
  };
  faults::run(
      {.scenario = scenario,
       .allocations = false,
       .calls = {"close", "fchmod", "fsync", "linkat", "openat", "renameat", "unlinkat", "write"}});
}

TEST(Faults, OfTheFirstSave) {
  TestBox box;
  box.traced = false;
  box.status(kGetOltMac);
  auto scenario = [&](const Plan &plan) {
    uint32_t status = 0;
    bool reached = false;
    {
      FaultInjector injector(plan);
      status = box.status(kSaveConfig);
      reached = injector.reached();
    }
    expect_status(plan, status);
    EXPECT_EQ(without_left_overs(files_in(box.options.state_dir), plan).size(),
              status == kOk ? 1U : 0U);
    EXPECT_EQ(box.status(kSaveConfig), kOk);
    for (const auto &[name, content] : files_in(box.options.state_dir)) {
      std::filesystem::remove(box.options.state_dir / name);
    }
    return reached;
  };
  faults::run(
      {.scenario = scenario,
       .allocations = false,
       .calls = {"close", "fchmod", "fsync", "linkat", "openat", "renameat", "unlinkat", "write"},
       .lasting = false});
}

TEST(Faults, OfTheRunningState) {
  TestBox box;
  box.traced = false;
  box.options.keep_running_state = true;
  Saves::change(box, 0x11);
  box.keep();
  auto before = files_in(box.options.state_dir);
  auto scenario = [&](const Plan &plan) {
    size_t descriptors = open_descriptors();
    Saves::change(box, 0x22);
    bool kept = true;
    bool reached = false;
    {
      FaultInjector injector(plan);
      try {
        box.keep();
      } catch (const std::exception &failure) {
        kept = false;
        EXPECT_TRUE(is_one_line(failure.what()));
      }
      reached = injector.reached();
    }
    EXPECT_TRUE(kept || !is_harmless(plan));
    EXPECT_EQ(open_descriptors(), descriptors);
    auto now = without_left_overs(files_in(box.options.state_dir), plan);
    if (kept) {
      EXPECT_TRUE(holds(now.at("running.state"), std::string(kSnmpParamSize, '\x22')));
      EXPECT_EQ(now.size(), 1U);
    } else {
      EXPECT_EQ(now, before);
    }
    Saves::change(box, 0x11);
    box.keep();
    box.restart();
    EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, 0x11));
    std::filesystem::remove(box.options.state_dir / "running.state");
    for (const auto &[name, content] : before) {
      write_file(box.options.state_dir / name, content);
    }
    return reached;
  };
  faults::run({.scenario = scenario,
               .allocations = false,
               .calls = {"close", "fchmod", "openat", "renameat", "unlinkat", "write"},
               .lasting = false});
}

TEST(Faults, OfAListing) {
  TestBox box;
  box.traced = false;
  box.options.listing_group = getegid();
  std::filesystem::create_directory(box.options.listing_dir);
  write_file(box.options.listing_dir / "basicinfo-00000007.txt", "an earlier one");
  auto scenario = [&](const Plan &plan) {
    box.restart();
    size_t descriptors = open_descriptors();
    box::Answer answer;
    bool reached = false;
    {
      FaultInjector injector(plan);
      answer = box.ask(kListBasicInfo);
      reached = injector.reached();
    }
    expect_status(plan, answer.status);
    EXPECT_EQ(open_descriptors(), descriptors);
    auto files = without_left_overs(files_in(box.options.listing_dir), plan);
    if (answer.status == kOk) {
      std::string listed = box.listing(answer.reply, kListingNameAt);
      EXPECT_EQ(listed.find("Basic information of olt\n"), 0U);
      EXPECT_EQ(listed.back(), '\n');
      EXPECT_EQ(files.size(), 2U);
    } else {
      EXPECT_EQ(files.size(), 1U);
    }
    // No number is used twice, whatever could not be seen.
    Bytes next = box.reply(kListBasicInfo);
    std::string name = characters(slice(next, kListingNameAt, kListingNameAt + 22));
    EXPECT_FALSE(files.contains(name)) << name;
    EXPECT_EQ(files_in(box.options.listing_dir).at("basicinfo-00000007.txt"), "an earlier one");
    for (const auto &[listing, content] : files_in(box.options.listing_dir)) {
      if (content != "an earlier one") std::filesystem::remove(box.options.listing_dir / listing);
    }
    return reached;
  };
  faults::run({.scenario = scenario,
               .allocations = false,
               .calls = {"close", "fchmod", "fchown", "open", "fdopendir", "fstatat", "openat",
                         "readdir", "renameat", "stat", "unlinkat", "write"}});
}

TEST(Faults, OfAListingWithoutADirectory) {
  TestBox box;
  box.traced = false;
  box.options.listing_dir = box.folder / "new/run";
  auto scenario = [&](const Plan &plan) {
    std::filesystem::remove_all(box.folder / "new");
    box.restart();
    uint32_t status = 0;
    bool reached = false;
    {
      FaultInjector injector(plan);
      status = box.status(kListBasicInfo);
      reached = injector.reached();
    }
    expect_status(plan, status);
    EXPECT_EQ(without_left_overs(files_in(box.options.listing_dir), plan).size(),
              status == kOk ? 1U : 0U);
    EXPECT_EQ(box.status(kListBasicInfo), kOk);
    return reached;
  };
  faults::run({.scenario = scenario,
               .allocations = false,
               .calls = {"close", "fchmod", "open", "fdopendir", "mkdir", "openat", "readdir",
                         "renameat", "stat", "unlinkat", "write"}});
}

// The limit holds, whatever cannot be removed.
TEST(Faults, OfAListingThatNeedsRoom) {
  TestBox box;
  box.traced = false;
  box.options.listing_limit = 5000;
  std::filesystem::create_directory(box.options.listing_dir);
  auto scenario = [&](const Plan &plan) {
    for (const auto &[name, content] : files_in(box.options.listing_dir)) {
      std::filesystem::remove(box.options.listing_dir / name);
    }
    write_file(box.options.listing_dir / "log-00000001.txt", std::string(2500, 'a'));
    write_file(box.options.listing_dir / "log-00000002.txt", std::string(2500, 'b'));
    box.restart();
    uint32_t status = 0;
    bool reached = false;
    {
      FaultInjector injector(plan);
      status = box.status(kListBasicInfo);
      reached = injector.reached();
    }
    expect_status(plan, status);
    auto files = without_left_overs(files_in(box.options.listing_dir), plan);
    EXPECT_EQ(files.contains("basicinfo-00000003.txt"), status == kOk);
    size_t total = 0;
    for (const auto &[name, content] : files) total += content.size();
    EXPECT_LE(total, 5000U);
    EXPECT_EQ(box.status(kListBasicInfo), kOk);
    return reached;
  };
  faults::run({.scenario = scenario,
               .allocations = false,
               .calls = {"close", "fchmod", "open", "fdopendir", "fstatat", "openat", "readdir",
                         "renameat", "stat", "unlinkat", "write"}});
}

TEST(Faults, OfAStart) {
  TestBox box;
  box.traced = false;
  box.options.keep_running_state = true;
  Saves::change(box, 0x11);
  box.status(kSaveConfig);
  box.keep();
  box.end();
  auto before = files_in(box.options.state_dir);
  size_t descriptors = open_descriptors();
  auto scenario = [&](const Plan &plan) {
    bool started = true;
    bool reached = false;
    {
      FaultInjector injector(plan);
      try {
        box.restart();
      } catch (const std::exception &failure) {
        started = false;
        EXPECT_TRUE(is_one_line(failure.what()));
      }
      reached = injector.reached();
    }
    EXPECT_TRUE(started || !is_harmless(plan));
    if (started) {
      EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, 0x11));
    }
    box.end();
    EXPECT_EQ(open_descriptors(), descriptors);
    EXPECT_EQ(files_in(box.options.state_dir), before);
    box.restart();
    EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, 0x11));
    box.end();
    return reached;
  };
  faults::run({.scenario = scenario,
               .allocations = false,
               .calls = {"close", "fchmod", "flock", "fstat", "mkdirat", "open", "openat", "read",
                         "unlinkat"},
               .lasting = false});
}

TEST(Faults, OfAStartThatCreatesItsDirectories) {
  TestBox box;
  box.traced = false;
  box.options.state_dir = box.folder / "new/state";
  auto scenario = [&](const Plan &plan) {
    std::filesystem::remove_all(box.folder / "new");
    std::string failure;
    bool reached = false;
    {
      FaultInjector injector(plan);
      failure = failure_of([&] { box.restart(); });
      box.end();
      reached = injector.reached();
    }
    EXPECT_TRUE(failure.empty() || (is_one_line(failure) && !is_harmless(plan))) << failure;
    EXPECT_EQ(box.status(kSaveConfig), kOk);
    box.end();
    return reached;
  };
  faults::run(
      {.scenario = scenario,
       .allocations = false,
       .calls = {"close", "fchmod", "flock", "fstat", "mkdirat", "open", "openat", "unlinkat"}});
}

TEST(Faults, OfAFreshStart) {
  TestBox box;
  box.traced = false;
  box.options.keep_running_state = true;
  Saves::change(box, 0x11);
  box.status(kSaveConfig);
  box.keep();
  box.end();
  box.options.fresh = true;
  auto before = files_in(box.options.state_dir);
  ASSERT_EQ(before.size(), 2U);
  auto scenario = [&](const Plan &plan) {
    for (const auto &[name, content] : before) {
      write_file(box.options.state_dir / name, content);
    }
    std::string failure;
    bool reached = false;
    {
      FaultInjector injector(plan);
      failure = failure_of([&] { box.restart(); });
      reached = injector.reached();
    }
    EXPECT_TRUE(failure.empty() || (is_one_line(failure) && !is_harmless(plan))) << failure;
    // What could not be removed is as it was.
    for (const auto &[name, content] : files_in(box.options.state_dir)) {
      EXPECT_FALSE(failure.empty());
      EXPECT_EQ(content, before[name]);
    }
    box.restart();
    EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, 0));
    EXPECT_TRUE(files_in(box.options.state_dir).empty());
    box.end();
    return reached;
  };
  faults::run(
      {.scenario = scenario,
       .allocations = false,
       .calls = {"close", "fchmod", "flock", "fstat", "mkdirat", "open", "openat", "unlinkat"}});
}

TEST(Faults, OfAStartThatAdopts) {
  TestBox box;
  box.traced = false;
  box.options.topology_file = box.folder.write("six.json", R"({"olt":{"ethernet_ports":6}})");
  Saves::change(box, 0x11);
  box.status(kSaveConfig);
  box.end();
  auto before = files_in(box.options.state_dir);
  box.options.topology_file = box.folder.write("four.json", R"({"olt":{"ethernet_ports":4}})");
  box.options.adopt = true;
  box.restart();
  box.end();
  auto after = files_in(box.options.state_dir);
  ASSERT_NE(before, after);
  auto scenario = [&](const Plan &plan) {
    write_file(box.options.state_dir / "saved.state", before["saved.state"]);
    std::string failure;
    bool reached = false;
    {
      FaultInjector injector(plan);
      failure = failure_of([&] { box.restart(); });
      box.end();
      reached = injector.reached();
    }
    EXPECT_TRUE(failure.empty() || (is_one_line(failure) && !is_harmless(plan))) << failure;
    EXPECT_EQ(without_left_overs(files_in(box.options.state_dir), plan),
              failure.empty() ? after : before);
    box.restart();
    EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, 0x11));
    box.end();
    EXPECT_EQ(without_left_overs(files_in(box.options.state_dir), plan), after);
    return reached;
  };
  faults::run({.scenario = scenario,
               .allocations = false,
               .calls = {"close", "fchmod", "flock", "fstat", "fsync", "linkat", "mkdirat", "open",
                         "openat", "read", "renameat", "unlinkat", "write"}});
}

// Start, save, reboot, keep and stop, with a link on the way to the state.
TEST(Faults, OfABoxFromStartToStop) {
  TestBox box;
  box.traced = false;
  box.options.keep_running_state = true;
  std::filesystem::create_directory_symlink(".", box.folder / "link");
  box.options.state_dir = box.folder / "link/state";
  Saves::change(box, 0x11);
  box.status(kSaveConfig);
  box.keep();
  box.end();
  auto before = files_in(box.options.state_dir);
  ASSERT_EQ(before.size(), 2U);
  auto scenario = [&](const Plan &plan) {
    for (const auto &[name, content] : before) {
      write_file(box.options.state_dir / name, content);
    }
    uint8_t saved = 0x11;
    uint8_t running = 0x11;
    std::string failure;
    bool reached = false;
    {
      FaultInjector injector(plan);
      failure = failure_of([&] {
        box.restart();
        Saves::change(box, 0x22);
        uint32_t status = box.status(kSaveConfig);
        expect_status(plan, status);
        if (status == kOk) saved = 0x22;
        EXPECT_EQ(box.status(kReboot), kOk);
        EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, saved));
        Saves::change(box, 0x33);
        box.keep();
        running = 0x33;
      });
      box.end();
      reached = injector.reached();
    }
    EXPECT_TRUE(failure.empty() || (is_one_line(failure) && !is_harmless(plan))) << failure;
    EXPECT_EQ(without_left_overs(files_in(box.options.state_dir), plan).size(), 2U);
    box.restart();
    EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, running));
    EXPECT_EQ(box.status(kReboot), kOk);
    EXPECT_EQ(box.reply(kGetSnmpParam), Bytes(kSnmpParamSize, saved));
    box.end();
    return reached;
  };
  faults::run({.scenario = scenario,
               .allocations = false,
               .calls = {"close", "fchmod", "flock", "fstat", "fsync", "linkat", "mkdirat", "open",
                         "openat", "read", "readlinkat", "renameat", "unlinkat", "write"}});
}

}  // namespace

}  // namespace olt::test
