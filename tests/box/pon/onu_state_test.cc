// How the PON side names ONUs and their parts, walks them and keeps their records.

#include "box/pon/onu_state.h"

#include <gtest/gtest.h>

#include "base/clock.h"
#include "base/mac.h"
#include "box/box.h"
#include "tests/box/onu_support.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;
using box::Onu;
using box::OnuPart;
using box::OnuState;
using box::Presence;
using box::RecordTable;
using box::Request;
using box::Scope;
using box::Shown;
using box::Topology;

const TimePoint kNow{1'769'860'800s};

Topology small() {
  Topology topology;
  topology.pon_interfaces = 2;
  topology.onus_per_interface = 3;
  topology.uni_ports_per_onu = 2;
  return topology;
}

Bytes words(uint32_t slot, uint32_t interface, uint32_t onu, uint32_t part) {
  return record(kTargetSize,
                {{0, word(slot)}, {4, word(interface)}, {8, word(onu)}, {kPartAt, word(part)}});
}

ptrdiff_t count(const RecordTable::KeptOfOnu &kept) {
  return std::distance(kept.begin(), kept.end());
}

/// The names of all rows, walked from the first to the last.
std::string walk(const OnuState &state, Scope scope) {
  std::string names;
  Bytes at = words(0, 0, 0, 0);
  while (auto row = state.next_row(Request(at), scope)) {
    names += to_text(*row) + ' ';
    at = words(1, row->interface, row->onu, row->part);
  }
  return names;
}

TEST(OnuState, RowsAreWalkedInOrder) {
  Topology topology = small();
  OnuState state(topology, kNow);
  EXPECT_EQ(walk(state, Scope::kOnu), "1/1/1 1/1/2 1/1/3 1/2/1 1/2/2 1/2/3 ");
  EXPECT_EQ(walk(state, Scope::kUniPort),
            "1/1/1:1 1/1/1:2 1/1/2:1 1/1/2:2 1/1/3:1 1/1/3:2 "
            "1/2/1:1 1/2/1:2 1/2/2:1 1/2/2:2 1/2/3:1 1/2/3:2 ");
  topology.voice_lines_per_onu = 0;
  EXPECT_EQ(walk(state, Scope::kVoiceLine), "");
}

TEST(OnuState, WalksContinueFromRowsThatDoNotExist) {
  Topology topology = small();
  OnuState state(topology, kNow);
  auto after = [&state](const Bytes &at, Scope scope) {
    auto row = state.next_row(Request(at), scope);
    return row ? to_text(*row) : "none";
  };
  EXPECT_EQ(after(words(1, 0, 7, 7), Scope::kOnu), "1/1/1");
  EXPECT_EQ(after(words(1, 1, 99, 0), Scope::kOnu), "1/2/1");
  EXPECT_EQ(after(words(1, 1, 2, 99), Scope::kUniPort), "1/1/3:1");
  EXPECT_EQ(after(words(1, 2, 99, 0), Scope::kOnu), "none");
  EXPECT_EQ(after(words(1, 3, 1, 0), Scope::kOnu), "none");
  EXPECT_EQ(after(words(2, 1, 1, 0), Scope::kOnu), "none");
}

TEST(OnuState, VoiceLineZeroIsTheFirst) {
  Topology topology = small();
  OnuState state(topology, kNow);
  Bytes at = words(1, 2, 3, 0);
  EXPECT_EQ(state.exact_row(Request(at), Scope::kVoiceLine), (OnuPart{2, 3, 1}));
  EXPECT_EQ(state.exact_row(Request(at), Scope::kUniPort), std::nullopt);
  EXPECT_EQ(state.exact_row(Request(at), Scope::kOnu), (OnuPart{2, 3, 0}));
  at = words(1, 2, 3, 3);
  EXPECT_EQ(state.exact_row(Request(at), Scope::kVoiceLine), std::nullopt);
  EXPECT_EQ(state.exact_row(Request(at), Scope::kOnu), (OnuPart{2, 3, 0}));
}

TEST(OnuState, SettingTheClockBackKeepsNoOnuAway) {
  Onu onu({1, 1}, kNow);
  EXPECT_EQ(onu.presence(kNow), Presence::kUp);
  onu.restart(kNow + 3s);
  EXPECT_EQ(onu.presence(kNow), Presence::kAway);
  EXPECT_EQ(onu.presence(kNow + 3s), Presence::kUp);
  EXPECT_EQ(onu.presence(kNow - 24h), Presence::kUp);
}

TEST(OnuState, TheLongestIdentityFits) {
  Onu onu({16, 1024}, kNow);
  EXPECT_EQ(onu.mac(), (Mac{0x02, 0x20, 0x10, 0x04, 0x00, 0x01}));
  EXPECT_EQ(onu.loid(), "onu-1-16-1024");
  EXPECT_EQ(onu.password(), "pw-1-16-1024");
}

TEST(OnuPartName, IsReadAsItIsWritten) {
  EXPECT_EQ(box::to_onu_part("1/2/3"), (OnuPart{2, 3, 0}));
  EXPECT_EQ(box::to_onu_part("1/2/3:4"), (OnuPart{2, 3, 4}));
  for (const char *bad : {"", "1", "1/2", "2/2/3", "1/0/3", "1/2/0", "1/2/3:", "1/2/3:0",
                          "1/2/3:4x", "1/2/3 ", "-1/2/3", "1/2/99999999999"}) {
    EXPECT_EQ(box::to_onu_part(bad), std::nullopt) << bad;
  }
}

TEST(RecordTable, KeepsOnlyWhatDiffersFromTheFactory) {
  RecordTable table("key", "Title", Scope::kUniPort, 4);
  const OnuPart place = {1, 2, 3};
  EXPECT_EQ(table.show(table.at(place)), "0");
  table.set(place, word(9));
  EXPECT_EQ(table.show(table.at(place)), "9");
  EXPECT_EQ(table.kept().size(), 1U);
  table.set(place, word(0));
  EXPECT_TRUE(table.kept().empty());
}

TEST(RecordTable, ForgetsAnOnuWithItsParts) {
  RecordTable table("key", "Title", Scope::kUniPort, 4);
  for (uint32_t onu = 1; onu <= 3; ++onu) {
    for (uint32_t port = 1; port <= 2; ++port) table.set({1, onu, port}, word(onu));
  }
  EXPECT_EQ(count(table.kept_of({1, 2})), 2);
  table.forget({1, 2});
  EXPECT_EQ(table.kept().size(), 4U);
  EXPECT_TRUE(table.kept_of({1, 2}).empty());
}

TEST(OnuStateFile, MistakesAreReportedWithTheirPlace) {
  const std::pair<const char *, const char *> kMistakes[] = {
      {R"("1/9/9:1":"09000000")", "names no part that the box has"},
      {R"("1/1/2:3":"09000000")", "names no part that the box has"},
      {R"("1/1/2":"09000000")", "names no part that the box has"},
      {R"("1/1/2:1":"0900")", "has 2 bytes; expected 4"},
      {R"("1/1/2:1":9)", "is 9; expected bytes in hex"},
  };
  SmallPon box;
  EXPECT_EQ(box.status(kSetGroupLimit, target_with(target(1, 2, 1), word(9))), kOk);
  EXPECT_EQ(box.status(kSaveConfig), kOk);
  box.end();
  const std::string kept = R"("1/1/2:1": "09000000")";
  for (const auto &[mistake, complaint] : kMistakes) {
    box.damage_state("saved", kept, mistake);
    try {
      box.restart();
      ADD_FAILURE() << "accepted " << mistake;
    } catch (const std::runtime_error &error) {
      EXPECT_TRUE(holds(std::string(error.what()), complaint)) << error.what();
    }
    std::string written = mistake;
    box.damage_state("saved", written.replace(written.find("\":"), 2, "\": "), kept);
  }
}

TEST(OnuStateFile, StaysSmallForOnusWithFactorySettings) {
  SmallPon box;
  box.options.keep_running_state = true;
  box.options.topology_file =
      box.folder.write("box.json", R"({"pon":{"interfaces":16,"onus_per_interface":1024}})");
  EXPECT_EQ(box.status(kRebootOnu, target(16, 1024)), kOk);
  box.keep();
  EXPECT_LT(std::filesystem::file_size(box.folder / "state/running.state"), 20'000U);
  EXPECT_TRUE(holds(box.state("running"), "1-1023")) << box.state("running");
}

TEST(OnuStateFile, UnknownOnusAreRefused) {
  SmallPon box;
  box.options.keep_running_state = true;
  EXPECT_EQ(box.status(kSetAuthMode, mode_record(1, 1)), kOk);
  box.keep();
  box.end();
  box.damage_state("running", "\"1-4\"", "\"1-5\"");
  try {
    box.restart();
    ADD_FAILURE() << "accepted";
  } catch (const std::runtime_error &error) {
    EXPECT_TRUE(
        holds(std::string(error.what()), "/onus: is \"1-5\"; expected ONUs that the box has"))
        << error.what();
  }
}

}  // namespace

}  // namespace olt::test
