// The voice service of ONTs: settings of an ONU and of each of its lines.

#include <gtest/gtest.h>

#include "tests/box/onu_support.h"

namespace olt::test {

namespace {

/// A text and its zero; the box must ignore the bytes after them.
Bytes interface_name(const std::string &name) {
  Bytes field(kWanInterfaceSize, 0xEE);
  put(field, 0, text(name + '\0'));
  return field;
}

TEST(Voice, UserAccountsAreReadBackByteForByte) {
  SmallPon box;
  EXPECT_EQ(box.reply(kGetVoiceAccount, target(1, 2, 1)), Bytes(kVoiceAccountSize));
  EXPECT_EQ(
      box.status(kSetVoiceAccount, target_with(target(1, 2, 2), counting(kVoiceAccountSize, 1))),
      kOk);
  EXPECT_EQ(box.reply(kGetVoiceAccount, target(1, 2, 2)), counting(kVoiceAccountSize, 1));
  EXPECT_EQ(box.reply(kGetVoiceAccount, target(1, 2, 1)), Bytes(kVoiceAccountSize));
  EXPECT_EQ(
      box.status(kSetVoiceAccount, target_with(target(1, 2, 2), counting(kVoiceAccountSize, 2))),
      kOk);
  EXPECT_EQ(box.reply(kGetVoiceAccount, target(1, 2, 2)), counting(kVoiceAccountSize, 2));
}

TEST(Voice, LineZeroIsTheFirst) {
  SmallPon box;
  EXPECT_EQ(box.status(kSetVoiceAccount, target_with(target(1, 2), counting(kVoiceAccountSize, 1))),
            kOk);
  EXPECT_EQ(box.reply(kGetVoiceAccount, target(1, 2, 1)), counting(kVoiceAccountSize, 1));
}

TEST(Voice, LinesAreOffUntilTheyAreSwitchedOn) {
  SmallPon box;
  EXPECT_EQ(box.list_target(kListVoiceLines, target(2, 1)),
            "Voice service of ONU 1/2/1\n"
            "==========================\n"
            "\n"
            "Lines\n"
            "Line  Switch  Account  State\n"
            "----  ------  -------  -----\n"
            "1     0       -        off\n"
            "2     0       -        off\n");
  EXPECT_EQ(box.status(kSetVoiceLine, target_with(target(2, 1, 1), word(1))), kOk);
  EXPECT_EQ(box.status(kSetVoiceLine, target_with(target(2, 1, 2), word(7))), kOk);
  EXPECT_EQ(
      box.status(kSetVoiceAccount, target_with(target(2, 1, 2), counting(kVoiceAccountSize, 1))),
      kOk);
  EXPECT_EQ(box.list_target(kListVoiceLines, target(2, 1)),
            "Voice service of ONU 1/2/1\n"
            "==========================\n"
            "\n"
            "Lines\n"
            "Line  Switch  Account  State\n"
            "----  ------  -------  --------------\n"
            "1     1       -        not registered\n"
            "2     7       set      registered\n");
}

TEST(Voice, LineStatesAreUnknownWhileTheOnuIsAway) {
  SmallPon box;
  EXPECT_EQ(box.status(kOntConfiguration, target_with(target(1, 2), word(3))), kOk);
  EXPECT_EQ(box.status(kListVoiceLines, target(1, 2)), kOnuNotUp);
  EXPECT_TRUE(holds(box.list_target(kListVoice, target(1, 2)), "1     0       -        unknown\n"));
  EXPECT_EQ(box.status(kSetVoiceLine, target_with(target(1, 2, 1), word(1))), kOk);
  box.advance(std::chrono::seconds(3));
  EXPECT_EQ(box.status(kListVoiceLines, target(1, 2)), kOk);
}

TEST(Voice, FaxModesAreKeptByLine) {
  SmallPon box;
  EXPECT_EQ(box.status(kSetFaxMode, target_with(target(1, 3, 2), hex("01ff"))), kOk);
  EXPECT_EQ(box.list_target(kListFaxModes, target(1, 3)),
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
  EXPECT_EQ(box.status(kSetSipConfig, target_with(target(1, 3, 7), counting(kSipConfigSize, 0x41))),
            kOk);
  EXPECT_EQ(box.list_target(kListSipConfig, target(1, 3)),
            "Voice service of ONU 1/1/3\n"
            "==========================\n"
            "\n"
            "SIP settings\n"
            "0000  4142434445464748494a4b4c4d4e4f50  ABCDEFGHIJKLMNOP\n"
            "0010  5152535455565758595a5b5c5d5e5f60  QRSTUVWXYZ[\\]^_`\n"
            "0020  6162636465666768696a6b6c6d        abcdefghijklm\n");
  EXPECT_TRUE(holds(box.list_target(kListSipConfig, target(1, 2)), "0000  000000"));
}

TEST(Voice, BindingIsReadUpToItsZero) {
  SmallPon box;
  EXPECT_TRUE(holds(box.list_target(kListVoiceBinding, target(1, 1)), "\nWAN interface  -\n"));
  EXPECT_EQ(box.status(kBindVoice, target_with(target(1, 1), interface_name("wan1.voip"))), kOk);
  EXPECT_EQ(box.list_target(kListVoiceBinding, target(1, 1)),
            "Voice service of ONU 1/1/1\n"
            "==========================\n"
            "\n"
            "Binding\n"
            "WAN interface  wan1.voip\n");
  EXPECT_EQ(slice(box.reply(kVoiceBindingRow, target(1, 1)), 20, 52),
            record(kWanInterfaceSize, {{0, text("wan1.voip")}}));
  EXPECT_EQ(box.status(kBindVoice, target_with(target(1, 1), interface_name(""))), kOk);
  EXPECT_TRUE(holds(box.list_target(kListVoiceBinding, target(1, 1)), "\nWAN interface  -\n"));
  EXPECT_EQ(box.status(kBindVoice, target_with(target(1, 1), Bytes(kWanInterfaceSize, 'x'))),
            kBadValue);
}

TEST(Voice, TheSummaryShowsEverything) {
  SmallPon box;
  box.status(kBindVoice, target_with(target(1, 1), interface_name("wan2")));
  box.status(kSetFaxMode, target_with(target(1, 1, 1), hex("0203")));
  std::string summary = box.list_target(kListVoice, target(1, 1));
  EXPECT_TRUE(holds(summary, "\nWAN interface  wan2\n")) << summary;
  EXPECT_TRUE(holds(summary, "\nSIP settings\n0000  0000")) << summary;
  EXPECT_TRUE(holds(summary, "\n1     0       -        off\n")) << summary;
  EXPECT_TRUE(holds(summary, "\n1     2           3\n")) << summary;
}

TEST(Voice, WhatDoesNotExistIsRefused) {
  SmallPon box;
  EXPECT_EQ(box.status(kGetVoiceAccount, target(1, 5, 1)), kNotFound);
  EXPECT_EQ(box.status(kGetVoiceAccount, target(3, 1, 1)), kNotFound);
  EXPECT_EQ(box.status(kGetVoiceAccount, target(1, 1, 3)), kNotFound);
  EXPECT_EQ(box.status(kSetVoiceLine, target_with(target(1, 1, 3), word(1))), kNotFound);
  EXPECT_EQ(box.status(kListVoice, target(0, 1)), kNotFound);
  Bytes other_kind = target(1, 1, 1);
  other_kind[kKindAt] = 2;
  EXPECT_EQ(box.status(kGetVoiceAccount, other_kind), kBadValue);
  EXPECT_EQ(box.status(kListVoice, Bytes(kTargetSize - 1)), kBadLength);
  EXPECT_EQ(box.status(kSetVoiceAccount, Bytes(kTargetSize + kVoiceAccountSize - 1)), kBadLength);
  EXPECT_EQ(box.status(kSetVoiceLine, Bytes(kTargetSize + 5)), kBadLength);
  EXPECT_EQ(box.status(kSetFaxMode, Bytes(kTargetSize + kFaxModeSize + 1)), kBadLength);
  EXPECT_EQ(box.status(kSetSipConfig, Bytes(kTargetSize + kSipConfigSize - 1)), kBadLength);
  EXPECT_EQ(box.status(kBindVoice, Bytes(kTargetSize + kWanInterfaceSize - 1)), kBadLength);
}

TEST(Voice, SettingsAreConfiguration) {
  SmallPon box;
  box.status(kSetVoiceAccount, target_with(target(1, 2, 2), counting(kVoiceAccountSize, 1)));
  box.status(kSetVoiceLine, target_with(target(1, 2, 2), word(1)));
  box.status(kSetFaxMode, target_with(target(1, 2, 2), hex("0102")));
  box.status(kSetSipConfig, target_with(target(1, 2), counting(kSipConfigSize, 1)));
  box.status(kBindVoice, target_with(target(1, 2), interface_name("wan1")));
  EXPECT_EQ(box.status(kSaveConfig), kOk);
  std::string kept = box.list_target(kListVoice, target(1, 2));
  EXPECT_EQ(box.status(kRestoreDefaults), kOk);
  EXPECT_EQ(box.reply(kGetVoiceAccount, target(1, 2, 2)), Bytes(kVoiceAccountSize));
  EXPECT_NE(box.list_target(kListVoice, target(1, 2)), kept);
  box.restart();
  EXPECT_EQ(box.reply(kGetVoiceAccount, target(1, 2, 2)), counting(kVoiceAccountSize, 1));
  EXPECT_EQ(box.list_target(kListVoice, target(1, 2)), kept);
  std::string config = box.running_config();
  EXPECT_TRUE(holds(config, "\nVoice line switches\n1/1/2:2  1\n")) << config;
  EXPECT_TRUE(holds(config, "\nFax modes\n1/1/2:2  0102\n")) << config;
  EXPECT_TRUE(holds(config, "\nInterfaces of the voice service\n1/1/2  wan1\n")) << config;
}

}  // namespace

}  // namespace olt::test
