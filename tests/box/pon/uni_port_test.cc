// The user ports of ONUs: records kept byte for byte, and their listings.

#include <gtest/gtest.h>

#include <numeric>

#include "tests/box/onu_support.h"

namespace {

using olt::tests::Bytes;
using olt::tests::hex;
using olt::tests::record;
using olt::tests::SmallPon;
using olt::tests::target;
using olt::tests::target_with;
using olt::tests::text;
using olt::tests::word;

struct Setter {
  uint32_t type;
  size_t size;
};

constexpr Setter kSetters[] = {{84, 44},  {105, 4},  {117, 4}, {118, 12},
                               {129, 36}, {130, 16}, {132, 44}};
constexpr uint32_t kReaders[] = {104, 119, 128, 131, 133};

TEST(UniPort, RatesAndPolicingAreReadBack) {
  SmallPon box;
  EXPECT_EQ(box.reply(2, 119, target(2, 3, 2)), Bytes(12));
  EXPECT_EQ(box.reply(2, 131, target(2, 3, 2)), Bytes(16));
  Bytes rates = hex("0a000000 14000000 ffffffff");
  Bytes policing = hex("01000000 00100000 00200000 efbeadde");
  EXPECT_EQ(box.status(2, 118, target_with(target(2, 3, 2), rates)), 0U);
  EXPECT_EQ(box.status(2, 130, target_with(target(2, 3, 2), policing)), 0U);
  EXPECT_EQ(box.reply(2, 119, target(2, 3, 2)), rates);
  EXPECT_EQ(box.reply(2, 131, target(2, 3, 2)), policing);
  EXPECT_EQ(box.reply(2, 119, target(2, 3, 1)), Bytes(12));
  EXPECT_EQ(box.reply(2, 119, target(2, 4, 2)), Bytes(12));
}

TEST(UniPort, TargetsAreChecked) {
  SmallPon box;
  for (Setter setter : kSetters) {
    Bytes tail(setter.size);
    EXPECT_EQ(box.status(2, setter.type, target_with(target(2, 4, 2), tail)), 0U) << setter.type;
    EXPECT_EQ(box.status(2, setter.type, target_with(target(2, 4, 0), tail)), 4U) << setter.type;
    EXPECT_EQ(box.status(2, setter.type, target_with(target(2, 4, 3), tail)), 4U) << setter.type;
    EXPECT_EQ(box.status(2, setter.type, target_with(target(2, 5, 1), tail)), 4U) << setter.type;
    EXPECT_EQ(box.status(2, setter.type, Bytes(88 + setter.size - 1)), 2U) << setter.type;
    EXPECT_EQ(box.status(2, setter.type, Bytes(88 + setter.size + 1)), 2U) << setter.type;
  }
  for (uint32_t type : kReaders) {
    EXPECT_EQ(box.status(2, type, target(2, 4, 2)), 0U) << type;
    EXPECT_EQ(box.status(2, type, target(2, 4, 0)), 4U) << type;
    EXPECT_EQ(box.status(2, type, target(2, 4, 3)), 4U) << type;
    EXPECT_EQ(box.status(2, type, target(3, 1, 1)), 4U) << type;
    EXPECT_EQ(box.status(2, type, Bytes(92)), 2U) << type;
  }
}

TEST(UniPort, AlarmIsListed) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 105, target_with(target(1, 2, 1), word(7))), 0U);
  EXPECT_EQ(box.list_target(104, target(1, 2, 1)),
            "Alarm setting of UNI port 1/1/2:1\n"
            "=================================\n"
            "\n"
            "Alarm\n"
            "Setting  7\n");
  EXPECT_NE(box.list_target(104, target(1, 2, 2)).find("Setting  0\n"), std::string::npos);
}

TEST(UniPort, VlanModeIsListed) {
  SmallPon box;
  Bytes mode(36);
  std::iota(mode.begin(), mode.end(), 'A');
  mode[0] = 2;
  mode[1] = mode[2] = mode[3] = 0;
  EXPECT_EQ(box.status(2, 129, target_with(target(1, 2, 1), mode)), 0U);
  EXPECT_EQ(box.list_target(128, target(1, 2, 1)),
            "VLAN mode of UNI port 1/1/2:1\n"
            "=============================\n"
            "\n"
            "VLAN mode\n"
            "Mode  translation\n"
            "\n"
            "Record\n"
            "0000  0200000045464748494a4b4c4d4e4f50  ....EFGHIJKLMNOP\n"
            "0010  5152535455565758595a5b5c5d5e5f60  QRSTUVWXYZ[\\]^_`\n"
            "0020  61626364                          abcd\n");
  mode[3] = 1;
  EXPECT_EQ(box.status(2, 129, target_with(target(1, 2, 1), mode)), 0U);
  EXPECT_NE(box.list_target(128, target(1, 2, 1)).find("Mode  16777218\n"), std::string::npos);
  EXPECT_NE(box.list_target(128, target(1, 2, 2)).find("Mode  transparent\n"), std::string::npos);
}

TEST(UniPort, BasicInformationShowsAllSettings) {
  SmallPon box;
  Bytes port = target(1, 2, 1);
  box.status(2, 84, target_with(port, record(44, {{0, text("desk")}})));
  box.status(2, 105, target_with(port, word(7)));
  box.status(2, 117, target_with(port, word(1)));
  box.status(2, 118, target_with(port, hex("0a000000 14000000 1e000000")));
  box.status(2, 130, target_with(port, hex("01000000 02000000 03000000 04000000")));
  box.status(2, 132, target_with(port, record(44, {{0, text("basic")}})));
  EXPECT_EQ(box.list_target(133, port),
            "Basic information of UNI port 1/1/2:1\n"
            "=====================================\n"
            "\n"
            "State\n"
            "ONU  up\n"
            "\n"
            "Settings\n"
            "Description      desk\n"
            "Alarm            7\n"
            "Loopback         1\n"
            "Downstream rate  10 20 30\n"
            "Policing         1 2 3 4\n"
            "\n"
            "Basic information as set\n"
            "0000  62617369630000000000000000000000  basic...........\n"
            "0010  00000000000000000000000000000000  ................\n"
            "0020  000000000000000000000000          ............\n");
}

TEST(UniPort, SettingsAreConfiguration) {
  SmallPon box;
  for (Setter setter : kSetters) {
    Bytes tail(setter.size, static_cast<uint8_t>('A' + setter.type % 26));
    EXPECT_EQ(box.status(2, setter.type, target_with(target(2, 4, 2), tail)), 0U) << setter.type;
  }
  std::string config = box.list_target(48, target(2, 4));
  std::string info = box.list_target(133, target(2, 4, 2));
  box.status(2, 8);
  box.status(2, 9);
  EXPECT_EQ(box.reply(2, 119, target(2, 4, 2)), Bytes(12));
  box.restart();
  EXPECT_EQ(box.list_target(48, target(2, 4)), config);
  EXPECT_EQ(box.list_target(133, target(2, 4, 2)), info);
}

}  // namespace
