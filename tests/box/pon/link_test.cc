// The global parameters of the PON; settings of single ONUs and actions on them.

#include <gtest/gtest.h>

#include "tests/box/onu_support.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;

/// A feature request as the library sends it: bytes of the head that it does not set are arbitrary.
Bytes feature_request(uint32_t interface, uint32_t onu, const Bytes &block) {
  Bytes head(kTargetSize, 0xEE);
  put(head, 0, words({1, interface, onu, 1}));
  return target_with(head, block);
}

bool is_up(SmallPon &box, uint32_t interface, uint32_t onu) {
  return slice(box.reply(kGetOnuMac, target(interface, onu)), kUpAt, kUpAt + 4) == word(1);
}

void set_mode(SmallPon &box, uint32_t interface, uint32_t mode) {
  EXPECT_EQ(box.status(kSetAuthMode, mode_record(interface, mode)), kOk);
}

std::string configuration(SmallPon &box) {
  return box.running_config();
}

TEST(GlobalParameters, AreReadBackWhole) {
  SmallPon box;
  EXPECT_EQ(box.reply(kGlobalParameters, counting(kGlobalParametersSize, 7)),
            counting(kGlobalParametersSize, 7));
  EXPECT_EQ(box.reply(kGlobalParameters, Bytes(kGlobalParametersSize)),
            Bytes(kGlobalParametersSize));
  EXPECT_EQ(box.status(kGlobalParameters, Bytes(kGlobalParametersSize - 1)), kBadLength);
  EXPECT_EQ(box.status(kSetPeerToPeer, Bytes(kGlobalParametersSize + 1)), kBadLength);
}

TEST(GlobalParameters, EachSetterChangesOnlyItsOwnWords) {
  SmallPon box;
  Bytes request(kGlobalParametersSize, 0xEE);
  put(request, kPeerToPeerAt, word(5));
  EXPECT_EQ(box.status(kSetPeerToPeer, request), kOk);
  request = Bytes(kGlobalParametersSize, 0xEE);
  put(request, kPonPortAt, word(6));
  EXPECT_EQ(box.status(kSetPonPort, request), kOk);
  request = Bytes(kGlobalParametersSize, 0xEE);
  put(request, kEncryptionAt, words({7, 8}));
  EXPECT_EQ(box.status(kSetEncryption, request), kOk);
  std::string config = configuration(box);
  EXPECT_TRUE(holds(config,
                    "Global parameters of the PON\n"
                    "Word 0              0\n"
                    "Word 1              0\n"
                    "Word 2              0\n"
                    "Word 3              0\n"
                    "Peer to peer        5\n"
                    "Encryption, first   7\n"
                    "Encryption, second  8\n"
                    "PON port            6\n"))
      << config;
}

TEST(GlobalParameters, AreConfiguration) {
  SmallPon box;
  box.status(kSetPeerToPeer, record(kGlobalParametersSize, {{kPeerToPeerAt, word(5)}}));
  box.status(kSaveConfig);
  box.status(kRestoreDefaults);
  EXPECT_FALSE(holds(configuration(box), "Peer to peer        5\n"));
  box.restart();
  EXPECT_TRUE(holds(configuration(box), "Peer to peer        5\n"));
}

TEST(Feature, BothSettersAreReadBack) {
  SmallPon box;
  EXPECT_EQ(box.reply(kGetFeature, target(2, 3)), Bytes(kFeatureSize));
  EXPECT_EQ(box.status(kSetFeature, feature_request(2, 3, counting(kFeatureSize, 1))), kOk);
  EXPECT_EQ(box.reply(kGetFeature, target(2, 3)), counting(kFeatureSize, 1));
  EXPECT_EQ(box.status(kForceFeature, feature_request(2, 3, counting(kFeatureSize, 2))), kOk);
  EXPECT_EQ(box.reply(kGetFeature, target(2, 3)), counting(kFeatureSize, 2));
  EXPECT_EQ(box.reply(kGetFeature, target(2, 4)), Bytes(kFeatureSize));
  EXPECT_EQ(box.reply(kGetFeature, target(1, 3)), Bytes(kFeatureSize));
}

TEST(Feature, BadTargetsAndLengthsAreRefused) {
  SmallPon box;
  for (uint32_t type : {kSetFeature, kDescribeOnu, kForceFeature}) {
    EXPECT_EQ(box.status(type, feature_request(1, 5, Bytes(kFeatureSize))), kNotFound) << type;
    EXPECT_EQ(box.status(type, Bytes(kTargetSize + kFeatureSize - 1)), kBadLength) << type;
    EXPECT_EQ(box.status(type, Bytes(kTargetSize + kFeatureSize + 1)), kBadLength) << type;
  }
  EXPECT_EQ(box.status(kGetFeature, target(3, 1)), kNotFound);
  EXPECT_EQ(box.status(kGetFeature, Bytes(kTargetSize + kFeatureSize)), kBadLength);
}

TEST(Description, IsSetAndDeleted) {
  SmallPon box;
  EXPECT_EQ(box.status(kDescribeOnu,
                       feature_request(1, 2, record(kOnuDescriptionSize, {{0, text("lab")}}))),
            kOk);
  EXPECT_TRUE(holds(box.list_target(kListOnuInfo, target(1, 2)), "Description  lab\n"));
  EXPECT_EQ(box.status(kDeleteOnuDescription, target(1, 2)), kOk);
  EXPECT_TRUE(holds(box.list_target(kListOnuInfo, target(1, 2)), "Description  -\n"));
  EXPECT_EQ(box.status(kDeleteOnuDescription, target(1, 2)), kOk);
}

TEST(Description, MayFillItsField) {
  SmallPon box;
  EXPECT_EQ(box.status(kDescribeOnu, feature_request(1, 2, Bytes(kOnuDescriptionSize, 'x'))), kOk);
  EXPECT_TRUE(holds(box.list_target(kListOnuInfo, target(1, 2)),
                    "Description  " + std::string(48, 'x') + "\n"));
}

TEST(UserTraffic, IsSentWithinTheTarget) {
  SmallPon box;
  Bytes request = target(1, 2);
  put(request, kUserTrafficAt, counting(kUserTrafficSize, 1));
  EXPECT_EQ(box.status(kSetUserTraffic, request), kOk);
  std::string config = box.list_target(kListOnuConfig, target(1, 2));
  // The words of the bytes 01 02 03 04, 05 06 07 08 and so on.
  EXPECT_TRUE(holds(config, "User traffic\n1/1/2  67305985 134678021 ")) << config;
}

TEST(Dba, GrantsWhatItCan) {
  SmallPon box;
  Bytes asked = hex("01000000 02000000 03000000 a0860100 40420f00");
  EXPECT_EQ(box.reply(kSetLinkDba, target_with(target(1, 2), asked)), asked);
  asked = hex("01000000 02000000 03000000 41420f00 ffffffff");
  Bytes granted = hex("01000000 02000000 03000000 40420f00 40420f00");
  EXPECT_EQ(box.reply(kSetLinkDba, target_with(target(1, 2), asked)), granted);
  EXPECT_TRUE(
      holds(box.list_target(kListOnuConfig, target(1, 2)), "1/1/2  1 2 3 1000000 1000000\n"));
  EXPECT_EQ(box.status(kSetLinkDba, target_with(target(1, 5), asked)), kNotFound);
  EXPECT_EQ(box.status(kSetLinkDba, Bytes(kTargetSize + kLinkDbaSize - 1)), kBadLength);
  EXPECT_EQ(box.status(kSetLinkDba, Bytes(kTargetSize + kLinkDbaSize + 1)), kBadLength);
}

TEST(OnuReboot, TakesTheOnuAwayForAWhile) {
  for (uint32_t type : {kRebootOnu, kRebootOnuOtherFamily}) {
    SmallPon box;
    EXPECT_EQ(box.status(type, target(1, 2)), kOk);
    EXPECT_FALSE(is_up(box, 1, 2));
    EXPECT_TRUE(is_up(box, 1, 3));
    EXPECT_EQ(box.status(type, target(1, 2)), kOnuNotUp);
    box.advance(2s);
    EXPECT_FALSE(is_up(box, 1, 2));
    box.advance(1s);
    EXPECT_TRUE(is_up(box, 1, 2));
    EXPECT_EQ(box.status(type, target(1, 5)), kNotFound);
  }
}

TEST(OnuReboot, IsRefusedForABlockedOnu) {
  SmallPon box;
  set_mode(box, 1, 1);
  for (uint32_t type : {kRebootOnu, kRebootOnuOtherFamily, kRestoreOnuDefaults})
    EXPECT_EQ(box.status(type, target(1, 2)), kOnuNotUp) << type;
  box.advance(3s);
  EXPECT_FALSE(is_up(box, 1, 2));
}

TEST(OnuReboot, KeepsTheSettings) {
  SmallPon box;
  box.status(kSetGroupLimit, target_with(target(1, 2, 1), word(9)));
  EXPECT_EQ(box.status(kRebootOnu, target(1, 2)), kOk);
  EXPECT_EQ(box.reply(kGetGroupLimit, target(1, 2, 1)), word(9));
}

TEST(OnuDefault, ForgetsPortsAndServicesAndRestarts) {
  SmallPon box;
  box.status(kSetFeature, feature_request(1, 2, counting(kFeatureSize, 1)));
  box.status(kDescribeOnu, feature_request(1, 2, record(kOnuDescriptionSize, {{0, text("lab")}})));
  box.status(kSetGroupLimit, target_with(target(1, 2, 1), word(9)));
  box.status(kSetUniPortAlarm, target_with(target(1, 2, 2), word(9)));
  box.status(kSetGroupLimit, target_with(target(1, 3, 1), word(9)));
  EXPECT_EQ(box.status(kRestoreOnuDefaults, target(1, 2)), kOk);
  EXPECT_FALSE(is_up(box, 1, 2));
  EXPECT_EQ(box.reply(kGetGroupLimit, target(1, 2, 1)), word(0));
  EXPECT_EQ(box.reply(kGetGroupLimit, target(1, 3, 1)), word(9));
  EXPECT_EQ(box.reply(kGetFeature, target(1, 2)), counting(kFeatureSize, 1));
  EXPECT_FALSE(holds(box.list_target(kListOnuConfig, target(1, 2)), "alarm"));
  EXPECT_TRUE(holds(box.list_target(kListOnuConfig, target(1, 2)), "lab"));
}

TEST(OnuNode, ClearingForgetsEverythingAndTriesAgain) {
  SmallPon box;
  box.status(kSetFeature, feature_request(1, 2, counting(kFeatureSize, 1)));
  box.status(kDescribeOnu, feature_request(1, 2, record(kOnuDescriptionSize, {{0, text("lab")}})));
  box.status(kSetLinkDba, target_with(target(1, 2), counting(kLinkDbaSize, 1)));
  box.status(kSetGroupLimit, target_with(target(1, 2, 1), word(9)));
  box.status(kSetGroupLimit, target_with(target(1, 3, 1), word(9)));
  box.advance(60s);
  EXPECT_EQ(box.status(kClearOnu, target(1, 2)), kOk);
  EXPECT_TRUE(holds(box.list_target(kListOnuConfig, target(1, 2)),
                    "No setting differs from the factory's."));
  EXPECT_EQ(box.reply(kGetGroupLimit, target(1, 3, 1)), word(9));
  EXPECT_TRUE(is_up(box, 1, 2));
  EXPECT_TRUE(
      holds(box.list_target(kListOnuInfo, target(1, 2)), "Since          2026-01-31T12:01:00Z\n"));
}

TEST(OnuNode, ABlockedOnuComesUpOnceItIsAllowed) {
  SmallPon box;
  set_mode(box, 1, 1);
  EXPECT_EQ(box.status(kClearOnu, target(1, 2)), kOk);
  EXPECT_FALSE(is_up(box, 1, 2));
  EXPECT_EQ(box.status(kAllowMacs, auth_entries(1, {auth_entry("02 20 01 00 02 01")})), kOk);
  EXPECT_EQ(box.status(kClearOnu, target(1, 2)), kOk);
  EXPECT_TRUE(is_up(box, 1, 2));
}

TEST(OnuRecords, AreConfiguration) {
  SmallPon box;
  box.status(kSetFeature, feature_request(1, 2, counting(kFeatureSize, 1)));
  box.status(kDescribeOnu, feature_request(1, 2, record(kOnuDescriptionSize, {{0, text("lab")}})));
  box.status(kSetLinkDba, target_with(target(1, 2), counting(kLinkDbaSize, 1)));
  std::string config = box.list_target(kListOnuConfig, target(1, 2));
  box.status(kSaveConfig);
  box.status(kRestoreDefaults);
  EXPECT_NE(box.list_target(kListOnuConfig, target(1, 2)), config);
  box.restart();
  EXPECT_EQ(box.list_target(kListOnuConfig, target(1, 2)), config);
  EXPECT_TRUE(holds(configuration(box), "Descriptions\n1/1/2  lab\n"));
}

TEST(OnuRecords, CanBeSetWhileTheOnuIsAway) {
  SmallPon box;
  set_mode(box, 1, 1);
  EXPECT_EQ(box.status(kSetFeature, feature_request(1, 2, counting(kFeatureSize, 1))), kOk);
  EXPECT_EQ(box.reply(kGetFeature, target(1, 2)), counting(kFeatureSize, 1));
  EXPECT_EQ(box.status(kSetLinkDba, target_with(target(1, 2), Bytes(kLinkDbaSize))), kOk);
  EXPECT_EQ(box.status(kSetGroupLimit, target_with(target(1, 2, 1), word(9))), kOk);
}

}  // namespace

}  // namespace olt::test
