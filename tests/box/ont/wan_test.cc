// The WAN connections of ONTs, and the configuration actions on them.

#include <gtest/gtest.h>

#include "tests/box/onu_support.h"

namespace olt::test {

namespace {

constexpr const char *kNone = "WAN connections of ONU 1/1/2\n============================\n";

Bytes connection(uint32_t operation, uint32_t number, std::string_view settings = {}) {
  return record(kWanConnectionSize, {{0, word(operation)}, {4, word(number)}, {8, text(settings)}});
}

uint32_t deal(SmallPon &box, const Bytes &record) {
  return box.status(kWanConnection, target_with(target(1, 2, 7), record));
}

TEST(WanConnections, AreAddedChangedAndDeleted) {
  SmallPon box;
  EXPECT_EQ(box.list_target(kListWanConnections, target(1, 2)), kNone);
  EXPECT_EQ(deal(box, connection(1, 3, "internet")), kOk);
  EXPECT_EQ(deal(box, connection(1, 1, "voice")), kOk);
  std::string two = box.list_target(kListWanConnections, target(1, 2));
  EXPECT_TRUE(holds(two,
                    "\nConnection 1\n"
                    "0000  0100000001000000766f696365000000  ........voice...\n"))
      << two;
  EXPECT_TRUE(holds(two,
                    "\nConnection 3\n"
                    "0000  0100000003000000696e7465726e6574  ........internet\n"))
      << two;
  EXPECT_LT(two.find("Connection 1"), two.find("Connection 3"));
  EXPECT_EQ(deal(box, connection(2, 3, "management")), kOk);
  EXPECT_EQ(deal(box, connection(3, 1)), kOk);
  Bytes row = box.reply(kWanInfoRow, target(1, 2));
  EXPECT_EQ(slice(row, 88, row.size()), connection(2, 3, "management"));
  EXPECT_EQ(box.list_target(kListWanConnections, target(1, 1)),
            "WAN connections of ONU 1/1/1\n============================\n");
}

TEST(WanConnections, RefusedRequestsChangeNothing) {
  SmallPon box;
  EXPECT_EQ(deal(box, connection(1, 8, "last")), kOk);
  std::string before = box.list_target(kListWanConnections, target(1, 2));
  EXPECT_EQ(deal(box, connection(1, 8, "other")), kExists);
  EXPECT_EQ(deal(box, connection(2, 1)), kNotFound);
  EXPECT_EQ(deal(box, connection(3, 1)), kNotFound);
  EXPECT_EQ(deal(box, connection(1, 0)), kBadValue);
  EXPECT_EQ(deal(box, connection(1, 9)), kBadValue);
  EXPECT_EQ(deal(box, connection(0, 8)), kBadValue);
  EXPECT_EQ(deal(box, connection(4, 8)), kBadValue);
  EXPECT_EQ(box.status(kWanConnection, target_with(target(1, 5), connection(1, 1))), kNotFound);
  EXPECT_EQ(box.status(kWanConnection, target_with(target(1, 2), Bytes(kWanConnectionSize - 1))),
            kBadLength);
  EXPECT_EQ(box.status(kListWanConnections, Bytes(kTargetSize + 1)), kBadLength);
  EXPECT_EQ(box.list_target(kListWanConnections, target(1, 2)), before);
}

TEST(WanConnections, AllEightFitAndAreConfiguration) {
  SmallPon box;
  for (uint32_t number = 1; number <= 8; ++number) {
    EXPECT_EQ(deal(box, connection(1, number, "x")), kOk);
  }
  std::string kept = box.list_target(kListWanConnections, target(1, 2));
  box.status(kSaveConfig);
  box.status(kRestoreDefaults);
  EXPECT_EQ(box.list_target(kListWanConnections, target(1, 2)), kNone);
  box.restart();
  EXPECT_EQ(box.list_target(kListWanConnections, target(1, 2)), kept);
  EXPECT_TRUE(holds(box.running_config(), "\nWAN connections\n1/1/2:1  **\n1/1/2:2  **\n"));
}

Bytes act(uint32_t interface, uint32_t onu, uint32_t action) {
  return target_with(target(interface, onu), word(action));
}

TEST(ConfigurationActions, RestartTakesTheOnuAway) {
  SmallPon box;
  EXPECT_EQ(deal(box, connection(1, 1)), kOk);
  EXPECT_EQ(box.status(kOntConfiguration, act(1, 2, 3)), kOk);
  EXPECT_EQ(box.status(kListVoiceLines, target(1, 2)), kOnuNotUp);
  EXPECT_EQ(box.status(kListVoiceLines, target(1, 1)), kOk);
  EXPECT_EQ(box.status(kOntConfiguration, act(1, 2, 1)), kOnuNotUp);
  EXPECT_EQ(box.status(kOntConfiguration, act(1, 2, 2)), kOnuNotUp);
  EXPECT_EQ(box.status(kOntConfiguration, act(1, 2, 3)), kOnuNotUp);
  EXPECT_EQ(box.status(kOntConfiguration, act(1, 2, 9)), kOk);
  box.advance(std::chrono::seconds(3));
  EXPECT_EQ(box.status(kListVoiceLines, target(1, 2)), kOk);
  EXPECT_TRUE(holds(box.list_target(kListWanConnections, target(1, 2)), "Connection 1\n"));
}

TEST(ConfigurationActions, DefaultsForgetTheServicesAndRestart) {
  SmallPon box;
  EXPECT_EQ(deal(box, connection(1, 1)), kOk);
  EXPECT_EQ(box.status(kSetVoiceAccount, target_with(target(1, 2, 1), Bytes(kVoiceAccountSize, 1))),
            kOk);
  EXPECT_EQ(box.status(kSetVoiceAccount, target_with(target(1, 1, 1), Bytes(kVoiceAccountSize, 2))),
            kOk);
  EXPECT_EQ(box.status(kOntConfiguration, act(1, 2, 2)), kOk);
  EXPECT_EQ(box.status(kListVoiceLines, target(1, 2)), kOnuNotUp);
  EXPECT_EQ(box.list_target(kListWanConnections, target(1, 2)), kNone);
  EXPECT_EQ(box.reply(kGetVoiceAccount, target(1, 2, 1)), Bytes(kVoiceAccountSize));
  EXPECT_EQ(box.reply(kGetVoiceAccount, target(1, 1, 1)), Bytes(kVoiceAccountSize, 2));
}

TEST(ConfigurationActions, TheLastOneIsShown) {
  SmallPon box;
  EXPECT_EQ(box.status(kOntConfiguration, act(2, 4, 1)), kOk);
  EXPECT_EQ(box.status(kOntConfiguration, act(1, 1, 77)), kOk);
  std::string config = box.running_config();
  EXPECT_TRUE(holds(config, "\nConfiguration actions\n1/1/1  77\n1/2/4  1\n")) << config;
  EXPECT_EQ(box.status(kOntConfiguration, act(2, 5, 1)), kNotFound);
  EXPECT_EQ(box.status(kOntConfiguration, Bytes(kTargetSize + 3)), kBadLength);
}

}  // namespace

}  // namespace olt::test
