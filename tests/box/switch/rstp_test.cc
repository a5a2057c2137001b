// RSTP and multicast: records kept byte for byte, and what the box makes of them.

#include <gtest/gtest.h>

#include "tests/box/support.h"

namespace {

using namespace std::chrono_literals;
using olt::tests::Bytes;
using olt::tests::counting;
using olt::tests::hex;
using olt::tests::record;
using olt::tests::TestBox;
using olt::tests::word;

Bytes port_record(uint32_t number, const Bytes &settings = {}) {
  return record(27, {{0, word(1)}, {4, word(number)}, {8, settings}});
}

Bytes factory_bridge() {
  return record(33, {{0, hex("00 02 0080 1400 0200 0f00 06")}});
}

/// The factory's bridge with RSTP on.
Bytes enabled_bridge() {
  return record(33, {{0, hex("01 02 0080 1400 0200 0f00 06")}});
}

Bytes brief(TestBox &box, uint32_t number) {
  Bytes request(40, 0xEE);
  std::copy_n(word(1).begin(), 4, request.begin());
  std::copy_n(word(number).begin(), 4, request.begin() + 4);
  return box.reply(23, 174, request);
}

Bytes words(std::initializer_list<uint32_t> values) {
  Bytes bytes;
  for (uint32_t value : values) {
    Bytes one = word(value);
    bytes.insert(bytes.end(), one.begin(), one.end());
  }
  return bytes;
}

TEST(Rstp, HasPlausibleSettingsFromTheFactory) {
  TestBox box;
  EXPECT_EQ(box.reply(2, 170), factory_bridge());
  EXPECT_EQ(box.reply(2, 171, port_record(3)), port_record(3, hex("01 80 00000000 00 01")));
}

TEST(Rstp, SettingsAreReadBackByteForByte) {
  TestBox box;
  EXPECT_EQ(box.status(2, 172, counting(33, 100)), 0U);
  EXPECT_EQ(box.reply(2, 170), counting(33, 100));
  EXPECT_EQ(box.status(2, 173, port_record(3, counting(19, 200))), 0U);
  EXPECT_EQ(box.reply(2, 171, port_record(3, Bytes(19, 0xEE))), port_record(3, counting(19, 200)));
  EXPECT_EQ(box.reply(2, 171, port_record(2)), port_record(2, hex("01 80 00000000 00 01")));
}

TEST(Rstp, IsSwitchedByPortInEitherRecord) {
  TestBox box;
  EXPECT_EQ(box.status(2, 67, record(80, {{0, word(1)}, {4, word(3)}, {60, word(0)}})), 0U);
  EXPECT_EQ(box.reply(2, 171, port_record(3)), port_record(3, hex("00 80 00000000 00 01")));
  EXPECT_EQ(box.status(2, 173, port_record(3, hex("05"))), 0U);
  EXPECT_EQ(olt::tests::slice(box.reply(2, 70, record(80, {{0, word(1)}, {4, word(3)}})), 60, 64),
            word(5));
}

TEST(Rstp, BadPortsAndLengthsAreRefused) {
  TestBox box;
  EXPECT_EQ(box.status(2, 171, port_record(5)), 4U);
  EXPECT_EQ(box.status(2, 173, port_record(0)), 4U);
  EXPECT_EQ(box.status(23, 174, record(40, {{0, word(2)}, {4, word(1)}})), 4U);
  EXPECT_EQ(box.status(2, 170, Bytes(33)), 2U);
  EXPECT_EQ(box.status(2, 172, Bytes(32)), 2U);
  EXPECT_EQ(box.status(2, 171, Bytes(26)), 2U);
  EXPECT_EQ(box.status(2, 173, Bytes(28)), 2U);
  EXPECT_EQ(box.status(23, 174, Bytes(36)), 2U);
  EXPECT_EQ(box.status(2, 174, Bytes(40)), 1U);
}

TEST(RstpBrief, ForwardsAtOnceWithoutRstp) {
  TestBox box;
  box.status(2, 12);
  box.advance(7s);
  EXPECT_EQ(brief(box, 3), words({1, 3, 0, 0, 3, 128, 20000, 32768, 0, 7}));
}

TEST(RstpBrief, GoesThroughItsStatesByTheForwardDelay) {
  TestBox box;
  EXPECT_EQ(box.status(2, 172, enabled_bridge()), 0U);
  EXPECT_EQ(brief(box, 3), words({1, 3, 1, 2, 1, 128, 20000, 32768, 0, 0}));
  box.advance(14s);
  EXPECT_EQ(brief(box, 3), words({1, 3, 1, 2, 1, 128, 20000, 32768, 0, 14}));
  box.advance(2s);
  EXPECT_EQ(brief(box, 3), words({1, 3, 1, 2, 2, 128, 20000, 32768, 0, 1}));
  box.advance(14s);
  EXPECT_EQ(brief(box, 3), words({1, 3, 1, 2, 3, 128, 20000, 32768, 0, 0}));
  std::string info = box.listing(box.reply(2, 53), 48);
  EXPECT_NE(info.find("1/3   designated  forwarding\n"), std::string::npos) << info;
}

TEST(RstpBrief, ShowsWhatWasSet) {
  TestBox box;
  box.status(2, 172, record(33, {{0, hex("01 02 0010 1400 0200 0400")}}));
  EXPECT_EQ(box.status(2, 173, port_record(2, hex("01 10 39300000 01"))), 0U);
  box.advance(1s);
  EXPECT_EQ(brief(box, 2), words({1, 2, 1, 2, 3, 16, 12345, 4096, 1, 1}));
  EXPECT_EQ(brief(box, 1), words({1, 1, 1, 2, 1, 128, 20000, 4096, 0, 1}));
}

TEST(RstpBrief, FollowsTheLinkAndThePort) {
  TestBox box;
  box.status(2, 172, enabled_bridge());
  box.advance(60s);
  box.status(2, 14, record(80, {{0, word(1)}, {4, word(3)}}));
  EXPECT_EQ(brief(box, 3), words({1, 3, 1, 0, 0, 128, 20000, 32768, 0, 0}));
  box.status(2, 14, record(80, {{0, word(1)}, {4, word(3)}, {16, word(1)}}));
  box.advance(3s);
  EXPECT_EQ(brief(box, 3), words({1, 3, 1, 2, 1, 128, 20000, 32768, 0, 1}));
  box.status(2, 67, record(80, {{0, word(1)}, {4, word(3)}}));
  EXPECT_EQ(brief(box, 3), words({1, 3, 0, 0, 3, 128, 20000, 32768, 0, 0}));
}

TEST(Rstp, SettingsAreConfigurationAndTimesAreNot) {
  TestBox box;
  box.options.keep_running_state = true;
  box.status(2, 172, enabled_bridge());
  box.status(2, 173, port_record(3, hex("01 10 39300000 01")));
  box.status(2, 8);
  box.advance(40s);
  box.keep();
  box.restart();
  EXPECT_EQ(brief(box, 1), words({1, 1, 1, 2, 3, 128, 20000, 32768, 0, 10}));
  box.status(2, 7);
  EXPECT_EQ(brief(box, 1), words({1, 1, 1, 2, 1, 128, 20000, 32768, 0, 0}));
  EXPECT_EQ(box.reply(2, 171, port_record(3)), port_record(3, hex("01 10 39300000 01")));
  std::string config = box.listing(box.reply(2, 33), 48);
  EXPECT_NE(config.find("RSTP bridge\n"
                        "Enabled              yes\n"
                        "Version              2\n"
                        "Priority             32768\n"
                        "Max age in s         20\n"
                        "Hello time in s      2\n"
                        "Forward delay in s   15\n"
                        "Transmit hold count  6\n"),
            std::string::npos)
      << config;
  EXPECT_NE(config.find("1/2   yes      128       by speed   no    yes\n"
                        "1/3   yes      16        12345      yes   no\n"),
            std::string::npos)
      << config;
  box.status(2, 9);
  EXPECT_EQ(box.reply(2, 170), factory_bridge());
  EXPECT_EQ(box.reply(2, 171, port_record(3)), port_record(3, hex("01 80 00000000 00 01")));
}

Bytes factory_proxy() {
  return words({0, 125, 10, 2, 1, 0});
}

TEST(IgmpProxy, RecordIsReadBackByteForByte) {
  TestBox box;
  EXPECT_EQ(box.reply(2, 151), factory_proxy());
  EXPECT_EQ(box.status(2, 152, counting(24, 7)), 0U);
  EXPECT_EQ(box.reply(2, 151), counting(24, 7));
  EXPECT_EQ(box.status(2, 152, Bytes(23)), 2U);
  EXPECT_EQ(box.status(2, 151, Bytes(24)), 2U);
}

TEST(MulticastVlans, AreAddedAndDeletedAndDumped) {
  TestBox box;
  EXPECT_EQ(box.reply(2, 153), record(28, {{0, factory_proxy()}}));
  EXPECT_EQ(box.status(2, 149, hex("6400c800 fe0f0000")), 0U);
  EXPECT_EQ(box.status(2, 150, hex("96000000")), 0U);
  EXPECT_EQ(box.reply(2, 153),
            record(40, {{0, factory_proxy()}, {24, hex("03000000 64009500 9700c800 fe0ffe0f")}}));
  EXPECT_EQ(box.status(2, 150, hex("64000000 01000000")), 4U);
  EXPECT_EQ(box.status(2, 150, hex("64000000 ff0f0000")), 3U);
  EXPECT_EQ(box.status(2, 149, hex("00000000")), 3U);
  EXPECT_EQ(box.status(2, 149, hex("640000")), 2U);
  EXPECT_EQ(box.status(2, 149), 0U);
  EXPECT_EQ(box.reply(2, 153).size(), 40U);
  EXPECT_EQ(box.status(2, 153, Bytes(1)), 2U);
}

TEST(MulticastVlans, AllFitIntoTheDump) {
  TestBox box;
  Bytes odd;
  for (uint32_t vlan = 1; vlan <= 4094; vlan += 2) {
    Bytes element = word(vlan);
    odd.insert(odd.end(), element.begin(), element.end());
  }
  EXPECT_EQ(box.status(2, 149, odd), 0U);
  EXPECT_EQ(box.reply(2, 153).size(), 24U + 4U + 4U * 2047U);
}

TEST(MulticastVlans, AndTheProxyAreConfiguration) {
  TestBox box;
  box.status(2, 152, words({1, 60, 5, 3, 1, 1}));
  box.status(2, 149, hex("6400c800"));
  Bytes set = box.reply(2, 153);
  box.status(2, 8);
  box.status(2, 9);
  EXPECT_EQ(box.reply(2, 153), record(28, {{0, factory_proxy()}}));
  box.restart();
  EXPECT_EQ(box.reply(2, 153), set);
  std::string config = box.listing(box.reply(2, 33), 48);
  EXPECT_NE(config.find("IGMP proxy\n"
                        "Enabled                          1\n"
                        "Query interval in s              60\n"
                        "Response time in s               5\n"
                        "Robustness                       3\n"
                        "Last member query interval in s  1\n"
                        "Fast leave                       1\n"
                        "\n"
                        "Multicast VLANs\n"
                        "100-200\n"),
            std::string::npos)
      << config;
}

}  // namespace
