// The global parameters of the PON, and what is set for single ONUs or done to them.

#include <gtest/gtest.h>

#include "tests/box/onu_support.h"

namespace {

using namespace std::chrono_literals;
using olt::tests::auth_entries;
using olt::tests::auth_entry;
using olt::tests::Bytes;
using olt::tests::counting;
using olt::tests::hex;
using olt::tests::record;
using olt::tests::slice;
using olt::tests::SmallPon;
using olt::tests::target;
using olt::tests::target_with;
using olt::tests::text;
using olt::tests::word;

/// A feature request as the library leaves it: bytes of the head that it does not write are junk.
Bytes feature_request(uint32_t interface, uint32_t onu, const Bytes &block) {
  Bytes head(88, 0xEE);
  const Bytes words = hex("01000000 00000000 00000000 01000000");
  std::copy(words.begin(), words.end(), head.begin());
  head[4] = static_cast<uint8_t>(interface);
  head[8] = static_cast<uint8_t>(onu);
  return target_with(head, block);
}

bool is_up(SmallPon &box, uint32_t interface, uint32_t onu) {
  return slice(box.reply(2, 65, target(interface, onu)), 36, 40) == word(1);
}

void set_mode(SmallPon &box, uint32_t interface, uint32_t mode) {
  EXPECT_EQ(box.status(2, 114, record(80, {{0, word(1)}, {4, word(interface)}, {36, word(mode)}})),
            0U);
}

std::string configuration(SmallPon &box) {
  return box.listing(box.reply(2, 33), 48);
}

TEST(GlobalParameters, ComeBackWhole) {
  SmallPon box;
  EXPECT_EQ(box.reply(2, 79, counting(32, 7)), counting(32, 7));
  EXPECT_EQ(box.reply(2, 79, Bytes(32)), Bytes(32));
  EXPECT_EQ(box.status(2, 79, Bytes(31)), 2U);
  EXPECT_EQ(box.status(2, 76, Bytes(33)), 2U);
}

TEST(GlobalParameters, EachSetterTakesItsOwnWordsAlone) {
  SmallPon box;
  Bytes request(32, 0xEE);
  auto put = [&request](size_t at, uint32_t value) {
    Bytes bytes = word(value);
    std::fill(request.begin(), request.end(), 0xEE);
    std::copy(bytes.begin(), bytes.end(), request.begin() + static_cast<std::ptrdiff_t>(at));
  };
  put(16, 5);
  EXPECT_EQ(box.status(2, 76, request), 0U);
  put(28, 6);
  EXPECT_EQ(box.status(2, 77, request), 0U);
  request = record(32, {{0, Bytes(20, 0xEE)}, {20, word(7)}, {24, word(8)}, {28, Bytes(4, 0xEE)}});
  EXPECT_EQ(box.status(2, 78, request), 0U);
  std::string config = configuration(box);
  EXPECT_NE(config.find("Global parameters of the PON\n"
                        "Word 0              0\n"
                        "Word 1              0\n"
                        "Word 2              0\n"
                        "Word 3              0\n"
                        "Peer to peer        5\n"
                        "Encryption, first   7\n"
                        "Encryption, second  8\n"
                        "PON port            6\n"),
            std::string::npos)
      << config;
}

TEST(GlobalParameters, AreConfiguration) {
  SmallPon box;
  box.status(2, 76, record(32, {{16, word(5)}}));
  box.status(2, 8);
  box.status(2, 9);
  EXPECT_EQ(configuration(box).find("Peer to peer        5\n"), std::string::npos);
  box.restart();
  EXPECT_NE(configuration(box).find("Peer to peer        5\n"), std::string::npos);
}

TEST(Feature, BothSettersAreReadBack) {
  SmallPon box;
  EXPECT_EQ(box.reply(2, 38, target(2, 3)), Bytes(48));
  EXPECT_EQ(box.status(2, 42, feature_request(2, 3, counting(48, 1))), 0U);
  EXPECT_EQ(box.reply(2, 38, target(2, 3)), counting(48, 1));
  EXPECT_EQ(box.status(2, 49, feature_request(2, 3, counting(48, 2))), 0U);
  EXPECT_EQ(box.reply(2, 38, target(2, 3)), counting(48, 2));
  EXPECT_EQ(box.reply(2, 38, target(2, 4)), Bytes(48));
  EXPECT_EQ(box.reply(2, 38, target(1, 3)), Bytes(48));
}

TEST(Feature, BadTargetsAndLengthsAreRefused) {
  SmallPon box;
  for (uint32_t type : {42U, 44U, 49U}) {
    EXPECT_EQ(box.status(2, type, feature_request(1, 5, Bytes(48))), 4U) << type;
    EXPECT_EQ(box.status(2, type, Bytes(135)), 2U) << type;
    EXPECT_EQ(box.status(2, type, Bytes(137)), 2U) << type;
  }
  EXPECT_EQ(box.status(2, 38, target(3, 1)), 4U);
  EXPECT_EQ(box.status(2, 38, Bytes(136)), 2U);
}

TEST(Description, IsSetAndDeleted) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 44, feature_request(1, 2, record(48, {{0, text("lab")}}))), 0U);
  EXPECT_NE(box.list_target(47, target(1, 2)).find("Description  lab\n"), std::string::npos);
  EXPECT_EQ(box.status(2, 45, target(1, 2)), 0U);
  EXPECT_NE(box.list_target(47, target(1, 2)).find("Description  -\n"), std::string::npos);
  EXPECT_EQ(box.status(2, 45, target(1, 2)), 0U);
}

TEST(Description, MayFillItsField) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 44, feature_request(1, 2, Bytes(48, 'x'))), 0U);
  EXPECT_NE(box.list_target(47, target(1, 2)).find("Description  " + std::string(48, 'x') + "\n"),
            std::string::npos);
}

TEST(UserTraffic, StandsInTheTargetItself) {
  SmallPon box;
  Bytes request = target(1, 2);
  Bytes traffic = counting(48, 1);
  std::copy(traffic.begin(), traffic.end(), request.begin() + 40);
  EXPECT_EQ(box.status(2, 46, request), 0U);
  std::string config = box.list_target(48, target(1, 2));
  // Words of the bytes 01 02 03 04, 05 06 07 08 and so on.
  EXPECT_NE(config.find("User traffic\n1/1/2  67305985 134678021 "), std::string::npos) << config;
}

TEST(Dba, GrantsWhatItCan) {
  SmallPon box;
  Bytes asked = hex("01000000 02000000 03000000 a0860100 40420f00");
  EXPECT_EQ(box.reply(2, 54, target_with(target(1, 2), asked)), asked);
  asked = hex("01000000 02000000 03000000 41420f00 ffffffff");
  Bytes granted = hex("01000000 02000000 03000000 40420f00 40420f00");
  EXPECT_EQ(box.reply(2, 54, target_with(target(1, 2), asked)), granted);
  EXPECT_NE(box.list_target(48, target(1, 2)).find("1/1/2  1 2 3 1000000 1000000\n"),
            std::string::npos);
  EXPECT_EQ(box.status(2, 54, target_with(target(1, 5), asked)), 4U);
  EXPECT_EQ(box.status(2, 54, Bytes(107)), 2U);
  EXPECT_EQ(box.status(2, 54, Bytes(109)), 2U);
}

TEST(OnuReboot, TakesTheOnuAwayForAWhile) {
  for (uint32_t type : {107U, 168U}) {
    SmallPon box;
    EXPECT_EQ(box.status(2, type, target(1, 2)), 0U);
    EXPECT_FALSE(is_up(box, 1, 2));
    EXPECT_TRUE(is_up(box, 1, 3));
    EXPECT_EQ(box.status(2, type, target(1, 2)), 11U);
    box.advance(2s);
    EXPECT_FALSE(is_up(box, 1, 2));
    box.advance(1s);
    EXPECT_TRUE(is_up(box, 1, 2));
    EXPECT_EQ(box.status(2, type, target(1, 5)), 4U);
  }
}

TEST(OnuReboot, OfABlockedOneIsNotPossible) {
  SmallPon box;
  set_mode(box, 1, 1);
  for (uint32_t type : {107U, 168U, 169U})
    EXPECT_EQ(box.status(2, type, target(1, 2)), 11U) << type;
  box.advance(3s);
  EXPECT_FALSE(is_up(box, 1, 2));
}

TEST(OnuReboot, KeepsWhatIsSet) {
  SmallPon box;
  box.status(2, 121, target_with(target(1, 2, 1), word(9)));
  EXPECT_EQ(box.status(2, 107, target(1, 2)), 0U);
  EXPECT_EQ(box.reply(2, 120, target(1, 2, 1)), word(9));
}

TEST(OnuDefault, ForgetsPortsAndServicesAndRestarts) {
  SmallPon box;
  box.status(2, 42, feature_request(1, 2, counting(48, 1)));
  box.status(2, 44, feature_request(1, 2, record(48, {{0, text("lab")}})));
  box.status(2, 121, target_with(target(1, 2, 1), word(9)));
  box.status(2, 105, target_with(target(1, 2, 2), word(9)));
  box.status(2, 121, target_with(target(1, 3, 1), word(9)));
  EXPECT_EQ(box.status(2, 169, target(1, 2)), 0U);
  EXPECT_FALSE(is_up(box, 1, 2));
  EXPECT_EQ(box.reply(2, 120, target(1, 2, 1)), word(0));
  EXPECT_EQ(box.reply(2, 120, target(1, 3, 1)), word(9));
  EXPECT_EQ(box.reply(2, 38, target(1, 2)), counting(48, 1));
  EXPECT_EQ(box.list_target(48, target(1, 2)).find("alarm"), std::string::npos);
  EXPECT_NE(box.list_target(48, target(1, 2)).find("lab"), std::string::npos);
}

TEST(OnuNode, IsForgottenWholeAndTriesAnew) {
  SmallPon box;
  box.status(2, 42, feature_request(1, 2, counting(48, 1)));
  box.status(2, 44, feature_request(1, 2, record(48, {{0, text("lab")}})));
  box.status(2, 54, target_with(target(1, 2), counting(20, 1)));
  box.status(2, 121, target_with(target(1, 2, 1), word(9)));
  box.status(2, 121, target_with(target(1, 3, 1), word(9)));
  box.advance(60s);
  EXPECT_EQ(box.status(2, 43, target(1, 2)), 0U);
  EXPECT_NE(box.list_target(48, target(1, 2)).find("All is as from the factory."),
            std::string::npos);
  EXPECT_EQ(box.reply(2, 120, target(1, 3, 1)), word(9));
  EXPECT_TRUE(is_up(box, 1, 2));
  EXPECT_NE(box.list_target(47, target(1, 2)).find("Since          2026-01-31T12:01:00Z\n"),
            std::string::npos);
}

TEST(OnuNode, ThatIsBlockedComesUpWhenItMay) {
  SmallPon box;
  set_mode(box, 1, 1);
  EXPECT_EQ(box.status(2, 43, target(1, 2)), 0U);
  EXPECT_FALSE(is_up(box, 1, 2));
  EXPECT_EQ(box.status(2, 112, auth_entries(1, {auth_entry("02 20 01 00 02 01")})), 0U);
  EXPECT_EQ(box.status(2, 43, target(1, 2)), 0U);
  EXPECT_TRUE(is_up(box, 1, 2));
}

TEST(OnuRecords, AreConfiguration) {
  SmallPon box;
  box.status(2, 42, feature_request(1, 2, counting(48, 1)));
  box.status(2, 44, feature_request(1, 2, record(48, {{0, text("lab")}})));
  box.status(2, 54, target_with(target(1, 2), counting(20, 1)));
  std::string config = box.list_target(48, target(1, 2));
  box.status(2, 8);
  box.status(2, 9);
  EXPECT_NE(box.list_target(48, target(1, 2)), config);
  box.restart();
  EXPECT_EQ(box.list_target(48, target(1, 2)), config);
  EXPECT_NE(configuration(box).find("Descriptions\n1/1/2  lab\n"), std::string::npos);
}

TEST(OnuRecords, CanBeSetWhileTheOnuIsAway) {
  SmallPon box;
  set_mode(box, 1, 1);
  EXPECT_EQ(box.status(2, 42, feature_request(1, 2, counting(48, 1))), 0U);
  EXPECT_EQ(box.reply(2, 38, target(1, 2)), counting(48, 1));
  EXPECT_EQ(box.status(2, 54, target_with(target(1, 2), Bytes(20))), 0U);
  EXPECT_EQ(box.status(2, 121, target_with(target(1, 2, 1), word(9))), 0U);
}

}  // namespace
