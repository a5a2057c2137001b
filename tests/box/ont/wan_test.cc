// The WAN connections of ONTs, and the configuration actions on them.

#include <gtest/gtest.h>

#include "tests/box/onu_support.h"

namespace {

using olt::tests::Bytes;
using olt::tests::record;
using olt::tests::slice;
using olt::tests::SmallPon;
using olt::tests::target;
using olt::tests::target_with;
using olt::tests::text;
using olt::tests::word;

constexpr const char *kNone = "WAN connections of ONU 1/1/2\n============================\n";

Bytes connection(uint32_t operation, uint32_t number, std::string_view settings = {}) {
  return record(125, {{0, word(operation)}, {4, word(number)}, {8, text(settings)}});
}

uint32_t deal(SmallPon &box, const Bytes &record) {
  return box.status(2, 145, target_with(target(1, 2, 7), record));
}

bool holds(const std::string &text, const std::string &part) {
  return text.find(part) != std::string::npos;
}

TEST(WanConnections, AreAddedChangedAndDeleted) {
  SmallPon box;
  EXPECT_EQ(box.list_target(146, target(1, 2)), kNone);
  EXPECT_EQ(deal(box, connection(1, 3, "internet")), 0U);
  EXPECT_EQ(deal(box, connection(1, 1, "voice")), 0U);
  std::string two = box.list_target(146, target(1, 2));
  EXPECT_TRUE(holds(two,
                    "\nConnection 1\n"
                    "0000  0100000001000000766f696365000000  ........voice...\n"))
      << two;
  EXPECT_TRUE(holds(two,
                    "\nConnection 3\n"
                    "0000  0100000003000000696e7465726e6574  ........internet\n"))
      << two;
  EXPECT_LT(two.find("Connection 1"), two.find("Connection 3"));
  EXPECT_EQ(deal(box, connection(2, 3, "management")), 0U);
  EXPECT_EQ(deal(box, connection(3, 1)), 0U);
  Bytes row = box.reply(2, 93, target(1, 2));
  EXPECT_EQ(slice(row, 88, row.size()), connection(2, 3, "management"));
  EXPECT_EQ(box.list_target(146, target(1, 1)),
            "WAN connections of ONU 1/1/1\n============================\n");
}

TEST(WanConnections, WhatCannotBeDoneChangesNothing) {
  SmallPon box;
  EXPECT_EQ(deal(box, connection(1, 8, "last")), 0U);
  std::string before = box.list_target(146, target(1, 2));
  EXPECT_EQ(deal(box, connection(1, 8, "other")), 5U);
  EXPECT_EQ(deal(box, connection(2, 1)), 4U);
  EXPECT_EQ(deal(box, connection(3, 1)), 4U);
  EXPECT_EQ(deal(box, connection(1, 0)), 3U);
  EXPECT_EQ(deal(box, connection(1, 9)), 3U);
  EXPECT_EQ(deal(box, connection(0, 8)), 3U);
  EXPECT_EQ(deal(box, connection(4, 8)), 3U);
  EXPECT_EQ(box.status(2, 145, target_with(target(1, 5), connection(1, 1))), 4U);
  EXPECT_EQ(box.status(2, 145, target_with(target(1, 2), Bytes(124))), 2U);
  EXPECT_EQ(box.status(2, 146, Bytes(89)), 2U);
  EXPECT_EQ(box.list_target(146, target(1, 2)), before);
}

TEST(WanConnections, AllEightFitAndAreConfiguration) {
  SmallPon box;
  for (uint32_t number = 1; number <= 8; ++number) {
    EXPECT_EQ(deal(box, connection(1, number, "x")), 0U);
  }
  std::string kept = box.list_target(146, target(1, 2));
  box.status(2, 8);
  box.status(2, 9);
  EXPECT_EQ(box.list_target(146, target(1, 2)), kNone);
  box.restart();
  EXPECT_EQ(box.list_target(146, target(1, 2)), kept);
  EXPECT_TRUE(holds(box.listing(box.reply(2, 33), 48), "\nWAN connections\n1/1/2:1  010000000100"));
}

Bytes act(uint32_t interface, uint32_t onu, uint32_t action) {
  return target_with(target(interface, onu), word(action));
}

TEST(ConfigurationActions, RestartTakesTheOnuAway) {
  SmallPon box;
  EXPECT_EQ(deal(box, connection(1, 1)), 0U);
  EXPECT_EQ(box.status(2, 147, act(1, 2, 3)), 0U);
  EXPECT_EQ(box.status(2, 137, target(1, 2)), 11U);
  EXPECT_EQ(box.status(2, 137, target(1, 1)), 0U);
  EXPECT_EQ(box.status(2, 147, act(1, 2, 1)), 11U);
  EXPECT_EQ(box.status(2, 147, act(1, 2, 2)), 11U);
  EXPECT_EQ(box.status(2, 147, act(1, 2, 3)), 11U);
  EXPECT_EQ(box.status(2, 147, act(1, 2, 9)), 0U);
  box.advance(std::chrono::seconds(3));
  EXPECT_EQ(box.status(2, 137, target(1, 2)), 0U);
  EXPECT_TRUE(holds(box.list_target(146, target(1, 2)), "Connection 1\n"));
}

TEST(ConfigurationActions, DefaultsForgetTheServicesAndRestart) {
  SmallPon box;
  EXPECT_EQ(deal(box, connection(1, 1)), 0U);
  EXPECT_EQ(box.status(2, 136, target_with(target(1, 2, 1), Bytes(80, 1))), 0U);
  EXPECT_EQ(box.status(2, 136, target_with(target(1, 1, 1), Bytes(80, 2))), 0U);
  EXPECT_EQ(box.status(2, 147, act(1, 2, 2)), 0U);
  EXPECT_EQ(box.status(2, 137, target(1, 2)), 11U);
  EXPECT_EQ(box.list_target(146, target(1, 2)), kNone);
  EXPECT_EQ(box.reply(2, 135, target(1, 2, 1)), Bytes(80));
  EXPECT_EQ(box.reply(2, 135, target(1, 1, 1)), Bytes(80, 2));
}

TEST(ConfigurationActions, TheLastOneIsShown) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 147, act(2, 4, 1)), 0U);
  EXPECT_EQ(box.status(2, 147, act(1, 1, 77)), 0U);
  std::string config = box.listing(box.reply(2, 33), 48);
  EXPECT_TRUE(holds(config, "\nConfiguration actions\n1/1/1  77\n1/2/4  1\n")) << config;
  EXPECT_EQ(box.status(2, 147, act(2, 5, 1)), 4U);
  EXPECT_EQ(box.status(2, 147, Bytes(91)), 2U);
}

}  // namespace
