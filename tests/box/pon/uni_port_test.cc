// The user ports of ONUs: records kept byte for byte, and their listings.

#include <gtest/gtest.h>

#include <numeric>

#include "tests/box/onu_support.h"

namespace olt::test {

namespace {

struct Setter {
  uint32_t type;
  size_t size;
};

constexpr Setter kSetters[] = {{kDescribeUniPort, kUniPortDescriptionSize},
                               {kSetUniPortAlarm, 4},
                               {kSetUniPortLoopback, 4},
                               {kSetUniPortDownRate, kDownRateSize},
                               {kSetUniPortVlanMode, kUniPortVlanModeSize},
                               {kSetUniPortPolicing, kPolicingSize},
                               {kSetUniPortInfo, kUniPortInfoSize}};
constexpr uint32_t kReaders[] = {kListUniPortAlarm, kGetUniPortDownRate, kListUniPortVlanMode,
                                 kGetUniPortPolicing, kListUniPortInfo};

TEST(UniPort, RatesAndPolicingAreReadBack) {
  SmallPon box;
  EXPECT_EQ(box.reply(kGetUniPortDownRate, target(2, 3, 2)), Bytes(kDownRateSize));
  EXPECT_EQ(box.reply(kGetUniPortPolicing, target(2, 3, 2)), Bytes(kPolicingSize));
  Bytes rates = hex("0a000000 14000000 ffffffff");
  Bytes policing = hex("01000000 00100000 00200000 efbeadde");
  EXPECT_EQ(box.status(kSetUniPortDownRate, target_with(target(2, 3, 2), rates)), kOk);
  EXPECT_EQ(box.status(kSetUniPortPolicing, target_with(target(2, 3, 2), policing)), kOk);
  EXPECT_EQ(box.reply(kGetUniPortDownRate, target(2, 3, 2)), rates);
  EXPECT_EQ(box.reply(kGetUniPortPolicing, target(2, 3, 2)), policing);
  EXPECT_EQ(box.reply(kGetUniPortDownRate, target(2, 3, 1)), Bytes(kDownRateSize));
  EXPECT_EQ(box.reply(kGetUniPortDownRate, target(2, 4, 2)), Bytes(kDownRateSize));
}

TEST(UniPort, TargetsAreChecked) {
  SmallPon box;
  for (Setter setter : kSetters) {
    Bytes tail(setter.size);
    EXPECT_EQ(box.status(setter.type, target_with(target(2, 4, 2), tail)), kOk) << setter.type;
    EXPECT_EQ(box.status(setter.type, target_with(target(2, 4, 0), tail)), kNotFound)
        << setter.type;
    EXPECT_EQ(box.status(setter.type, target_with(target(2, 4, 3), tail)), kNotFound)
        << setter.type;
    EXPECT_EQ(box.status(setter.type, target_with(target(2, 5, 1), tail)), kNotFound)
        << setter.type;
    EXPECT_EQ(box.status(setter.type, Bytes(kTargetSize + setter.size - 1)), kBadLength)
        << setter.type;
    EXPECT_EQ(box.status(setter.type, Bytes(kTargetSize + setter.size + 1)), kBadLength)
        << setter.type;
  }
  for (uint32_t type : kReaders) {
    EXPECT_EQ(box.status(type, target(2, 4, 2)), kOk) << type;
    EXPECT_EQ(box.status(type, target(2, 4, 0)), kNotFound) << type;
    EXPECT_EQ(box.status(type, target(2, 4, 3)), kNotFound) << type;
    EXPECT_EQ(box.status(type, target(3, 1, 1)), kNotFound) << type;
    EXPECT_EQ(box.status(type, Bytes(kTargetSize + 4)), kBadLength) << type;
  }
}

TEST(UniPort, AlarmIsListed) {
  SmallPon box;
  EXPECT_EQ(box.status(kSetUniPortAlarm, target_with(target(1, 2, 1), word(7))), kOk);
  EXPECT_EQ(box.list_target(kListUniPortAlarm, target(1, 2, 1)),
            "Alarm setting of UNI port 1/1/2:1\n"
            "=================================\n"
            "\n"
            "Alarm\n"
            "Setting  7\n");
  EXPECT_TRUE(holds(box.list_target(kListUniPortAlarm, target(1, 2, 2)), "Setting  0\n"));
}

TEST(UniPort, VlanModeIsListed) {
  SmallPon box;
  Bytes mode(kUniPortVlanModeSize);
  std::iota(mode.begin(), mode.end(), 'A');
  mode[0] = 2;
  mode[1] = mode[2] = mode[3] = 0;
  EXPECT_EQ(box.status(kSetUniPortVlanMode, target_with(target(1, 2, 1), mode)), kOk);
  EXPECT_EQ(box.list_target(kListUniPortVlanMode, target(1, 2, 1)),
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
  EXPECT_EQ(box.status(kSetUniPortVlanMode, target_with(target(1, 2, 1), mode)), kOk);
  EXPECT_TRUE(holds(box.list_target(kListUniPortVlanMode, target(1, 2, 1)), "Mode  16777218\n"));
  EXPECT_TRUE(holds(box.list_target(kListUniPortVlanMode, target(1, 2, 2)), "Mode  transparent\n"));
}

TEST(UniPort, BasicInformationShowsAllSettings) {
  SmallPon box;
  Bytes port = target(1, 2, 1);
  box.status(kDescribeUniPort,
             target_with(port, record(kUniPortDescriptionSize, {{0, text("desk")}})));
  box.status(kSetUniPortAlarm, target_with(port, word(7)));
  box.status(kSetUniPortLoopback, target_with(port, word(1)));
  box.status(kSetUniPortDownRate, target_with(port, hex("0a000000 14000000 1e000000")));
  box.status(kSetUniPortPolicing, target_with(port, hex("01000000 02000000 03000000 04000000")));
  box.status(kSetUniPortInfo, target_with(port, record(kUniPortInfoSize, {{0, text("basic")}})));
  EXPECT_EQ(box.list_target(kListUniPortInfo, port),
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
    EXPECT_EQ(box.status(setter.type, target_with(target(2, 4, 2), tail)), kOk) << setter.type;
  }
  std::string config = box.list_target(kListOnuConfig, target(2, 4));
  std::string info = box.list_target(kListUniPortInfo, target(2, 4, 2));
  box.status(kSaveConfig);
  box.status(kRestoreDefaults);
  EXPECT_EQ(box.reply(kGetUniPortDownRate, target(2, 4, 2)), Bytes(kDownRateSize));
  box.restart();
  EXPECT_EQ(box.list_target(kListOnuConfig, target(2, 4)), config);
  EXPECT_EQ(box.list_target(kListUniPortInfo, target(2, 4, 2)), info);
}

}  // namespace

}  // namespace olt::test
