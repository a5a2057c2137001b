// RSTP and multicast: records kept byte for byte, and their effects.

#include <gtest/gtest.h>

#include "tests/box/support.h"

namespace olt::test {

namespace {

using namespace std::chrono_literals;

Bytes rstp_port(uint32_t number, const Bytes &settings = {}) {
  return record(kRstpPortSize, {{0, word(1)}, {4, word(number)}, {8, settings}});
}

Bytes factory_bridge() {
  return record(kRstpBridgeSize, {{0, hex("00 02 0080 1400 0200 0f00 06")}});
}

/// The factory's bridge with RSTP on.
Bytes enabled_bridge() {
  return record(kRstpBridgeSize, {{0, hex("01 02 0080 1400 0200 0f00 06")}});
}

Bytes brief(TestBox &box, uint32_t number) {
  Bytes request(kRstpBriefSize, 0xEE);
  put(request, 0, words({1, number}));
  return box.reply(kRstpModule, kGetRstpBrief, request);
}

TEST(Rstp, HasPlausibleSettingsFromTheFactory) {
  TestBox box;
  EXPECT_EQ(box.reply(kGetRstpBridge), factory_bridge());
  EXPECT_EQ(box.reply(kGetRstpPort, rstp_port(3)), rstp_port(3, hex("01 80 00000000 00 01")));
}

TEST(Rstp, SettingsAreReadBackByteForByte) {
  TestBox box;
  EXPECT_EQ(box.status(kSetRstpBridge, counting(kRstpBridgeSize, 100)), kOk);
  EXPECT_EQ(box.reply(kGetRstpBridge), counting(kRstpBridgeSize, 100));
  EXPECT_EQ(box.status(kSetRstpPort, rstp_port(3, counting(19, 200))), kOk);
  EXPECT_EQ(box.reply(kGetRstpPort, rstp_port(3, Bytes(19, 0xEE))),
            rstp_port(3, counting(19, 200)));
  EXPECT_EQ(box.reply(kGetRstpPort, rstp_port(2)), rstp_port(2, hex("01 80 00000000 00 01")));
}

TEST(Rstp, EitherRecordSwitchesItOnAPort) {
  TestBox box;
  EXPECT_EQ(box.status(kSetRstpState, port_record(3, {{kRstpStateAt, word(0)}})), kOk);
  EXPECT_EQ(box.reply(kGetRstpPort, rstp_port(3)), rstp_port(3, hex("00 80 00000000 00 01")));
  EXPECT_EQ(box.status(kSetRstpPort, rstp_port(3, hex("05"))), kOk);
  EXPECT_EQ(slice(box.reply(kGetPortInfo, port_record(3)), kRstpStateAt, kRstpStateAt + 4),
            word(5));
}

TEST(Rstp, BadPortsAndLengthsAreRefused) {
  TestBox box;
  EXPECT_EQ(box.status(kGetRstpPort, rstp_port(5)), kNotFound);
  EXPECT_EQ(box.status(kSetRstpPort, rstp_port(0)), kNotFound);
  EXPECT_EQ(
      box.status(kRstpModule, kGetRstpBrief, record(kRstpBriefSize, {{0, word(2)}, {4, word(1)}})),
      kNotFound);
  EXPECT_EQ(box.status(kGetRstpBridge, Bytes(kRstpBridgeSize)), kBadLength);
  EXPECT_EQ(box.status(kSetRstpBridge, Bytes(kRstpBridgeSize - 1)), kBadLength);
  EXPECT_EQ(box.status(kGetRstpPort, Bytes(kRstpPortSize - 1)), kBadLength);
  EXPECT_EQ(box.status(kSetRstpPort, Bytes(kRstpPortSize + 1)), kBadLength);
  EXPECT_EQ(box.status(kRstpModule, kGetRstpBrief, Bytes(kRstpBriefSize - 4)), kBadLength);
  EXPECT_EQ(box.status(kGetRstpBrief, Bytes(kRstpBriefSize)), kNotServed);
}

TEST(RstpBrief, ForwardsAtOnceWithoutRstp) {
  TestBox box;
  box.status(kGetOltMac);
  box.advance(7s);
  EXPECT_EQ(brief(box, 3), words({1, 3, 0, 0, 3, 128, 20000, 32768, 0, 7}));
}

TEST(RstpBrief, GoesThroughItsStatesByTheForwardDelay) {
  TestBox box;
  EXPECT_EQ(box.status(kSetRstpBridge, enabled_bridge()), kOk);
  EXPECT_EQ(brief(box, 3), words({1, 3, 1, 2, 1, 128, 20000, 32768, 0, 0}));
  box.advance(14s);
  EXPECT_EQ(brief(box, 3), words({1, 3, 1, 2, 1, 128, 20000, 32768, 0, 14}));
  box.advance(2s);
  EXPECT_EQ(brief(box, 3), words({1, 3, 1, 2, 2, 128, 20000, 32768, 0, 1}));
  box.advance(14s);
  EXPECT_EQ(brief(box, 3), words({1, 3, 1, 2, 3, 128, 20000, 32768, 0, 0}));
  std::string info = box.basic_info();
  EXPECT_TRUE(holds(info, "1/3   designated  forwarding\n")) << info;
}

TEST(RstpBrief, ShowsWhatWasSet) {
  TestBox box;
  box.status(kSetRstpBridge, record(kRstpBridgeSize, {{0, hex("01 02 0010 1400 0200 0400")}}));
  EXPECT_EQ(box.status(kSetRstpPort, rstp_port(2, hex("01 10 39300000 01"))), kOk);
  box.advance(1s);
  EXPECT_EQ(brief(box, 2), words({1, 2, 1, 2, 3, 16, 12345, 4096, 1, 1}));
  EXPECT_EQ(brief(box, 1), words({1, 1, 1, 2, 1, 128, 20000, 4096, 0, 1}));
}

TEST(RstpBrief, FollowsTheLinkAndThePort) {
  TestBox box;
  box.status(kSetRstpBridge, enabled_bridge());
  box.advance(60s);
  box.status(kSetPortEnable, port_record(3));
  EXPECT_EQ(brief(box, 3), words({1, 3, 1, 0, 0, 128, 20000, 32768, 0, 0}));
  box.status(kSetPortEnable, port_record(3, {{kEnabledAt, word(1)}}));
  box.advance(3s);
  EXPECT_EQ(brief(box, 3), words({1, 3, 1, 2, 1, 128, 20000, 32768, 0, 1}));
  box.status(kSetRstpState, port_record(3));
  EXPECT_EQ(brief(box, 3), words({1, 3, 0, 0, 3, 128, 20000, 32768, 0, 0}));
}

TEST(Rstp, SettingsAreConfigurationAndTimesAreNot) {
  TestBox box;
  box.options.keep_running_state = true;
  box.status(kSetRstpBridge, enabled_bridge());
  box.status(kSetRstpPort, rstp_port(3, hex("01 10 39300000 01")));
  box.status(kSaveConfig);
  box.advance(40s);
  box.keep();
  box.restart();
  EXPECT_EQ(brief(box, 1), words({1, 1, 1, 2, 3, 128, 20000, 32768, 0, 10}));
  box.status(kReboot);
  EXPECT_EQ(brief(box, 1), words({1, 1, 1, 2, 1, 128, 20000, 32768, 0, 0}));
  EXPECT_EQ(box.reply(kGetRstpPort, rstp_port(3)), rstp_port(3, hex("01 10 39300000 01")));
  std::string config = box.running_config();
  EXPECT_TRUE(holds(config,
                    "RSTP bridge\n"
                    "Enabled              yes\n"
                    "Version              2\n"
                    "Priority             32768\n"
                    "Max age in s         20\n"
                    "Hello time in s      2\n"
                    "Forward delay in s   15\n"
                    "Transmit hold count  6\n"))
      << config;
  EXPECT_TRUE(holds(config,
                    "1/2   yes      128       by speed   no    yes\n"
                    "1/3   yes      16        12345      yes   no\n"))
      << config;
  box.status(kRestoreDefaults);
  EXPECT_EQ(box.reply(kGetRstpBridge), factory_bridge());
  EXPECT_EQ(box.reply(kGetRstpPort, rstp_port(3)), rstp_port(3, hex("01 80 00000000 00 01")));
}

Bytes factory_proxy() {
  return words({0, 125, 10, 2, 1, 0});
}

TEST(IgmpProxy, RecordIsReadBackByteForByte) {
  TestBox box;
  EXPECT_EQ(box.reply(kGetIgmpProxy), factory_proxy());
  EXPECT_EQ(box.status(kSetIgmpProxy, counting(kIgmpProxySize, 7)), kOk);
  EXPECT_EQ(box.reply(kGetIgmpProxy), counting(kIgmpProxySize, 7));
  EXPECT_EQ(box.status(kSetIgmpProxy, Bytes(kIgmpProxySize - 1)), kBadLength);
  EXPECT_EQ(box.status(kGetIgmpProxy, Bytes(kIgmpProxySize)), kBadLength);
}

TEST(MulticastVlans, AreAddedAndDeletedAndDumped) {
  TestBox box;
  EXPECT_EQ(box.reply(kDumpIgmpProxy), record(kIgmpProxySize + 4, {{0, factory_proxy()}}));
  EXPECT_EQ(box.status(kAddMulticastVlans, hex("6400c800 fe0f0000")), kOk);
  EXPECT_EQ(box.status(kDeleteMulticastVlans, hex("96000000")), kOk);
  EXPECT_EQ(
      box.reply(kDumpIgmpProxy),
      record(kIgmpProxySize + 16,
             {{0, factory_proxy()}, {kIgmpProxySize, hex("03000000 64009500 9700c800 fe0ffe0f")}}));
  EXPECT_EQ(box.status(kDeleteMulticastVlans, hex("64000000 01000000")), kNotFound);
  EXPECT_EQ(box.status(kDeleteMulticastVlans, hex("64000000 ff0f0000")), kBadValue);
  EXPECT_EQ(box.status(kAddMulticastVlans, hex("00000000")), kBadValue);
  EXPECT_EQ(box.status(kAddMulticastVlans, hex("640000")), kBadLength);
  EXPECT_EQ(box.status(kAddMulticastVlans), kOk);
  EXPECT_EQ(box.reply(kDumpIgmpProxy).size(), kIgmpProxySize + 16);
  EXPECT_EQ(box.status(kDumpIgmpProxy, Bytes(1)), kBadLength);
}

TEST(MulticastVlans, AllFitIntoTheDump) {
  TestBox box;
  Bytes odd;
  for (uint32_t vlan = 1; vlan <= 4094; vlan += 2) {
    Bytes element = word(vlan);
    odd.insert(odd.end(), element.begin(), element.end());
  }
  EXPECT_EQ(box.status(kAddMulticastVlans, odd), kOk);
  EXPECT_EQ(box.reply(kDumpIgmpProxy).size(), kIgmpProxySize + 4 + 2047 * kVlanSize);
}

TEST(MulticastVlans, AndTheProxyAreConfiguration) {
  TestBox box;
  box.status(kSetIgmpProxy, words({1, 60, 5, 3, 1, 1}));
  box.status(kAddMulticastVlans, hex("6400c800"));
  Bytes set = box.reply(kDumpIgmpProxy);
  box.status(kSaveConfig);
  box.status(kRestoreDefaults);
  EXPECT_EQ(box.reply(kDumpIgmpProxy), record(kIgmpProxySize + 4, {{0, factory_proxy()}}));
  box.restart();
  EXPECT_EQ(box.reply(kDumpIgmpProxy), set);
  std::string config = box.running_config();
  EXPECT_TRUE(holds(config,
                    "IGMP proxy\n"
                    "Enabled                          1\n"
                    "Query interval in s              60\n"
                    "Response time in s               5\n"
                    "Robustness                       3\n"
                    "Last member query interval in s  1\n"
                    "Fast leave                       1\n"
                    "\n"
                    "Multicast VLANs\n"
                    "100-200\n"))
      << config;
}

}  // namespace

}  // namespace olt::test
