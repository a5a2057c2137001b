// The voice service of ONTs: what is kept for an ONU and for each of its lines.

#include <gtest/gtest.h>

#include "tests/box/onu_support.h"

namespace {

using olt::tests::Bytes;
using olt::tests::counting;
using olt::tests::hex;
using olt::tests::slice;
using olt::tests::SmallPon;
using olt::tests::target;
using olt::tests::target_with;
using olt::tests::text;
using olt::tests::word;

/// A text with its zero, and what the sender's memory held behind it.
Bytes interface_name(const std::string &name) {
  Bytes field(32, 0xEE);
  std::copy(name.begin(), name.end(), field.begin());
  field[name.size()] = 0;
  return field;
}

bool holds(const std::string &text, const std::string &part) {
  return text.find(part) != std::string::npos;
}

TEST(Voice, UserAccountsAreReadBackByteForByte) {
  SmallPon box;
  EXPECT_EQ(box.reply(2, 135, target(1, 2, 1)), Bytes(80));
  EXPECT_EQ(box.status(2, 136, target_with(target(1, 2, 2), counting(80, 1))), 0U);
  EXPECT_EQ(box.reply(2, 135, target(1, 2, 2)), counting(80, 1));
  EXPECT_EQ(box.reply(2, 135, target(1, 2, 1)), Bytes(80));
  EXPECT_EQ(box.status(2, 136, target_with(target(1, 2, 2), counting(80, 2))), 0U);
  EXPECT_EQ(box.reply(2, 135, target(1, 2, 2)), counting(80, 2));
}

TEST(Voice, ALineThatIsNotNamedIsTheFirst) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 136, target_with(target(1, 2), counting(80, 1))), 0U);
  EXPECT_EQ(box.reply(2, 135, target(1, 2, 1)), counting(80, 1));
}

TEST(Voice, LinesAreOffUntilTheyAreSwitchedOn) {
  SmallPon box;
  EXPECT_EQ(box.list_target(137, target(2, 1)),
            "Voice service of ONU 1/2/1\n"
            "==========================\n"
            "\n"
            "Lines\n"
            "Line  Switch  Account  State\n"
            "----  ------  -------  -----\n"
            "1     0       -        off\n"
            "2     0       -        off\n");
  EXPECT_EQ(box.status(2, 138, target_with(target(2, 1, 1), word(1))), 0U);
  EXPECT_EQ(box.status(2, 138, target_with(target(2, 1, 2), word(7))), 0U);
  EXPECT_EQ(box.status(2, 136, target_with(target(2, 1, 2), counting(80, 1))), 0U);
  EXPECT_EQ(box.list_target(137, target(2, 1)),
            "Voice service of ONU 1/2/1\n"
            "==========================\n"
            "\n"
            "Lines\n"
            "Line  Switch  Account  State\n"
            "----  ------  -------  --------------\n"
            "1     1       -        not registered\n"
            "2     7       set      registered\n");
}

TEST(Voice, OnlyAnOnuThatIsUpTellsHowItsLinesStand) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 147, target_with(target(1, 2), word(3))), 0U);
  EXPECT_EQ(box.status(2, 137, target(1, 2)), 11U);
  EXPECT_TRUE(holds(box.list_target(134, target(1, 2)), "1     0       -        unknown\n"));
  EXPECT_EQ(box.status(2, 138, target_with(target(1, 2, 1), word(1))), 0U);
  box.advance(std::chrono::seconds(3));
  EXPECT_EQ(box.status(2, 137, target(1, 2)), 0U);
}

TEST(Voice, FaxModesAreKeptByLine) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 141, target_with(target(1, 3, 2), hex("01ff"))), 0U);
  EXPECT_EQ(box.list_target(139, target(1, 3)),
            "Voice service of ONU 1/1/3\n"
            "==========================\n"
            "\n"
            "Fax modes\n"
            "Line  First byte  Second byte\n"
            "----  ----------  -----------\n"
            "1     0           0\n"
            "2     1           255\n");
}

TEST(Voice, SipSettingsAreKeptByOnu) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 142, target_with(target(1, 3, 7), counting(45, 0x41))), 0U);
  EXPECT_EQ(box.list_target(140, target(1, 3)),
            "Voice service of ONU 1/1/3\n"
            "==========================\n"
            "\n"
            "SIP settings\n"
            "0000  4142434445464748494a4b4c4d4e4f50  ABCDEFGHIJKLMNOP\n"
            "0010  5152535455565758595a5b5c5d5e5f60  QRSTUVWXYZ[\\]^_`\n"
            "0020  6162636465666768696a6b6c6d        abcdefghijklm\n");
  EXPECT_TRUE(holds(box.list_target(140, target(1, 2)), "0000  000000"));
}

TEST(Voice, BindingIsReadUpToItsZero) {
  SmallPon box;
  EXPECT_TRUE(holds(box.list_target(144, target(1, 1)), "\nWAN interface  -\n"));
  EXPECT_EQ(box.status(2, 143, target_with(target(1, 1), interface_name("wan1.voip"))), 0U);
  EXPECT_EQ(box.list_target(144, target(1, 1)),
            "Voice service of ONU 1/1/1\n"
            "==========================\n"
            "\n"
            "Binding\n"
            "WAN interface  wan1.voip\n");
  EXPECT_EQ(slice(box.reply(2, 94, target(1, 1)), 20, 52),
            olt::tests::record(32, {{0, text("wan1.voip")}}));
  EXPECT_EQ(box.status(2, 143, target_with(target(1, 1), interface_name(""))), 0U);
  EXPECT_TRUE(holds(box.list_target(144, target(1, 1)), "\nWAN interface  -\n"));
  EXPECT_EQ(box.status(2, 143, target_with(target(1, 1), Bytes(32, 'x'))), 3U);
}

TEST(Voice, TheSummaryShowsEverything) {
  SmallPon box;
  box.status(2, 143, target_with(target(1, 1), interface_name("wan2")));
  box.status(2, 141, target_with(target(1, 1, 1), hex("0203")));
  std::string summary = box.list_target(134, target(1, 1));
  EXPECT_TRUE(holds(summary, "\nWAN interface  wan2\n")) << summary;
  EXPECT_TRUE(holds(summary, "\nSIP settings\n0000  0000")) << summary;
  EXPECT_TRUE(holds(summary, "\n1     0       -        off\n")) << summary;
  EXPECT_TRUE(holds(summary, "\n1     2           3\n")) << summary;
}

TEST(Voice, WhatDoesNotExistIsRefused) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 135, target(1, 5, 1)), 4U);
  EXPECT_EQ(box.status(2, 135, target(3, 1, 1)), 4U);
  EXPECT_EQ(box.status(2, 135, target(1, 1, 3)), 4U);
  EXPECT_EQ(box.status(2, 138, target_with(target(1, 1, 3), word(1))), 4U);
  EXPECT_EQ(box.status(2, 134, target(0, 1)), 4U);
  Bytes other_kind = target(1, 1, 1);
  other_kind[12] = 2;
  EXPECT_EQ(box.status(2, 135, other_kind), 3U);
  EXPECT_EQ(box.status(2, 134, Bytes(87)), 2U);
  EXPECT_EQ(box.status(2, 136, Bytes(167)), 2U);
  EXPECT_EQ(box.status(2, 138, Bytes(93)), 2U);
  EXPECT_EQ(box.status(2, 141, Bytes(91)), 2U);
  EXPECT_EQ(box.status(2, 142, Bytes(132)), 2U);
  EXPECT_EQ(box.status(2, 143, Bytes(119)), 2U);
}

TEST(Voice, SettingsAreConfiguration) {
  SmallPon box;
  box.status(2, 136, target_with(target(1, 2, 2), counting(80, 1)));
  box.status(2, 138, target_with(target(1, 2, 2), word(1)));
  box.status(2, 141, target_with(target(1, 2, 2), hex("0102")));
  box.status(2, 142, target_with(target(1, 2), counting(45, 1)));
  box.status(2, 143, target_with(target(1, 2), interface_name("wan1")));
  EXPECT_EQ(box.status(2, 8), 0U);
  std::string kept = box.list_target(134, target(1, 2));
  EXPECT_EQ(box.status(2, 9), 0U);
  EXPECT_EQ(box.reply(2, 135, target(1, 2, 2)), Bytes(80));
  EXPECT_NE(box.list_target(134, target(1, 2)), kept);
  box.restart();
  EXPECT_EQ(box.reply(2, 135, target(1, 2, 2)), counting(80, 1));
  EXPECT_EQ(box.list_target(134, target(1, 2)), kept);
  std::string config = box.listing(box.reply(2, 33), 48);
  EXPECT_TRUE(holds(config, "\nVoice line switches\n1/1/2:2  1\n")) << config;
  EXPECT_TRUE(holds(config, "\nFax modes\n1/1/2:2  0102\n")) << config;
  EXPECT_TRUE(holds(config, "\nInterfaces of the voice service\n1/1/2  wan1\n")) << config;
}

}  // namespace
