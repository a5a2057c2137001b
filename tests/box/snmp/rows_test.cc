// The readers of SNMP tables: which row a request selects, and that the row shows what the setters
// wrote.

#include <gtest/gtest.h>

#include <set>

#include "tests/box/onu_support.h"

namespace olt::test {

namespace {

/// Asks for the row after the target.
Bytes after(Bytes target) {
  put(target, kKindAt, word(2));
  return target;
}

/// Asks for the first row.
Bytes before_first() {
  Bytes bytes(kTargetSize, 0xEE);
  put(bytes, 0, Bytes(20));
  put(bytes, kKindAt, word(2));
  return bytes;
}

struct Place {
  uint32_t interface;
  uint32_t onu;
  uint32_t part;
  bool operator==(const Place &) const = default;
};

/// Passes each returned target on until no row follows.
std::vector<Place> walk(SmallPon &box, uint32_t type, size_t tail) {
  std::vector<Place> places;
  Bytes request = before_first();
  for (;;) {
    box::Answer answer = box.ask(type, target_with(request, Bytes(tail)));
    if (answer.status != 0) {
      EXPECT_EQ(answer.status, kNotFound);
      return places;
    }
    request = slice(answer.reply, 0, kTargetSize);
    EXPECT_EQ(word_at(request, 0), 1U);
    EXPECT_EQ(word_at(request, kKindAt), 2U);
    places.push_back({word_at(request, 4), word_at(request, 8), word_at(request, kPartAt)});
  }
}

std::vector<Place> all(uint32_t parts) {
  std::vector<Place> places;
  for (uint32_t interface = 1; interface <= 2; ++interface) {
    for (uint32_t onu = 1; onu <= 4; ++onu) {
      if (parts == 0) places.push_back({interface, onu, 0});
      for (uint32_t part = 1; part <= parts; ++part) places.push_back({interface, onu, part});
    }
  }
  return places;
}

TEST(SnmpRows, TablesAreWalkedByTheReturnedTargets) {
  SmallPon box;
  EXPECT_EQ(walk(box, kSipConfigRow, 0), all(0));
  for (uint32_t type : {kFaxModeRow, kPolicingRow, kDownRateRow, kVlanModeRow, kMulticastVlansRow,
                        kGroupLimitRow}) {
    EXPECT_EQ(walk(box, type, 0), all(2)) << type;
  }
  EXPECT_EQ(walk(box, kStripRow, kStripSize), all(2));
}

TEST(SnmpRows, TheReturnedTargetNamesTheRowAndKeepsTheRest) {
  SmallPon box;
  Bytes reply = box.reply(kDownRateRow, after(target(1, 4, 2)));
  Bytes expected = after(target(2, 1, 1));
  put(expected, kMacAt, hex("022002000101"));
  EXPECT_EQ(slice(reply, 0, kTargetSize), expected);
  EXPECT_EQ(reply.size(), kTargetSize + kDownRateSize);
  Bytes of_onu = box.reply(kSipConfigRow, after(target(1, 4, 77)));
  expected = after(target(2, 1, 77));
  put(expected, kMacAt, hex("022002000101"));
  EXPECT_EQ(slice(of_onu, 0, kTargetSize), expected);
}

TEST(SnmpRows, RowsThatDoNotExistAreRefused) {
  SmallPon box;
  for (uint32_t type :
       {kGlobalInfoRow, kIadInfoRow, kSipConfigRow, kWanInfoRow, kVoiceBindingRow}) {
    EXPECT_EQ(box.status(type, target(2, 5)), kNotFound) << type;
    EXPECT_EQ(box.status(type, target(3, 1)), kNotFound) << type;
    EXPECT_EQ(box.status(type, after(target(2, 4))), kNotFound) << type;
  }
  for (uint32_t type : {kVoiceAccountRow, kFaxModeRow, kVoiceLineRow, kUniPortInfoRow, kPolicingRow,
                        kDownRateRow, kVlanModeRow, kMulticastVlansRow, kGroupLimitRow}) {
    EXPECT_EQ(box.status(type, target(1, 1, 3)), kNotFound) << type;
    EXPECT_EQ(box.status(type, after(target(2, 4, 2))), kNotFound) << type;
    Bytes other_kind = target(1, 1, 1);
    put(other_kind, kKindAt, word(3));
    EXPECT_EQ(box.status(type, other_kind), kBadValue) << type;
    EXPECT_EQ(box.status(type, Bytes(kTargetSize + 1)), kBadLength) << type;
  }
  EXPECT_EQ(box.status(kOnuInfoRow, Bytes(kTargetSize + kOnuRowSize - 1)), kBadLength);
  EXPECT_EQ(box.status(kLinkInfoRow, Bytes(kTargetSize + kOnuRowSize + 1)), kBadLength);
  EXPECT_EQ(box.status(kStripRow, Bytes(kTargetSize)), kBadLength);
  EXPECT_EQ(box.status(kStripRow, Bytes(kTargetSize + kStripSize + 2)), kBadLength);
}

TEST(SnmpRows, BasicInformationOfAnOnu) {
  SmallPon box;
  box.status(kWanConnection,
             target_with(target(2, 3), record(kWanConnectionSize, {{0, word(1)}, {4, word(5)}})));
  box.advance(std::chrono::seconds(5));
  Bytes request = target_with(target(2, 3), Bytes(kOnuRowSize, 0xEE));
  EXPECT_EQ(box.reply(kOnuInfoRow, request),
            record(kOnuRowSize, {{0, hex("01000000 02000000 03000000 00000000")},
                                 {16, hex("022002000301")},
                                 {24, word(1)},
                                 {28, word(5)},
                                 {32, word(2)},
                                 {36, word(2)},
                                 {40, word(1)},
                                 {48, text("onu-1-2-3")}}));
  box.status(kOntConfiguration, target_with(target(2, 3), word(3)));
  EXPECT_EQ(slice(box.reply(kOnuInfoRow, request), 24, 32), hex("02000000 00000000"));
  box.status(kSetAuthMode, mode_record(2, 1));
  EXPECT_EQ(slice(box.reply(kOnuInfoRow, request), 24, 28), word(3));
}

TEST(SnmpRows, BasicInformationOfALink) {
  SmallPon box;
  Bytes request = target_with(target(1, 2), Bytes(kOnuRowSize, 0xEE));
  EXPECT_EQ(box.reply(kLinkInfoRow, request),
            record(kOnuRowSize, {{0, hex("01000000 01000000 02000000 00000000")},
                                 {16, hex("022001000201")},
                                 {24, word(1)}}));
}

TEST(SnmpRows, GlobalInformationListsThePartsAfterItsHead) {
  SmallPon box;
  box.status(kSetVoiceLine, target_with(target(1, 1, 2), word(9)));
  box.status(kWanConnection,
             target_with(target(1, 1), record(kWanConnectionSize, {{0, word(1)}, {4, word(5)}})));
  EXPECT_EQ(box.reply(kGlobalInfoRow, target(1, 1)),
            record(120, {{0, hex("01000000 01000000 01000000 00000000")},
                         {16, hex("022001000101")},
                         {24, word(1)},
                         {32, text("onu-1-1-1")},
                         {56, word(60)},
                         {60, hex("01000000 01000000 00000000")},
                         {72, hex("01000000 02000000 00000000")},
                         {84, hex("02000000 01000000 00000000")},
                         {96, hex("02000000 02000000 09000000")},
                         {108, hex("03000000 05000000 00000000")}}));
}

TEST(SnmpRows, VoiceOfAnOnu) {
  SmallPon box;
  Bytes interface_name(kWanInterfaceSize, 0xEE);
  put(interface_name, 0, Bytes{'w', 'a', 'n', '1', 0});
  box.status(kBindVoice, target_with(target(1, 1), interface_name));
  box.status(kSetVoiceLine, target_with(target(1, 1, 1), word(1)));
  box.status(kSetVoiceLine, target_with(target(1, 1, 2), word(1)));
  box.status(kSetVoiceAccount, target_with(target(1, 1, 2), counting(kVoiceAccountSize, 1)));
  EXPECT_EQ(box.reply(kIadInfoRow, target(1, 1)),
            record(92, {{0, hex("01000000 01000000 01000000 00000000")},
                        {16, hex("022001000101")},
                        {24, word(1)},
                        {28, word(2)},
                        {32, text("wan1")},
                        {64, word(2)},
                        {68, word(1)},
                        {72, word(1)}}));
  EXPECT_EQ(
      box.reply(kVoiceBindingRow, target(1, 1)),
      record(88,
             {{0, hex("01000000 01000000 01000000 00000000")}, {16, word(1)}, {20, text("wan1")}}));
  EXPECT_EQ(slice(box.reply(kVoiceBindingRow, target(1, 2)), 16, 88), Bytes(72));
}

TEST(SnmpRows, VoiceSettingsAreReadBack) {
  SmallPon box;
  box.status(kSetFaxMode, target_with(target(2, 1, 2), hex("0aff")));
  box.status(kSetSipConfig, target_with(target(2, 1), counting(kSipConfigSize, 1)));
  box.status(kSetVoiceAccount, target_with(target(2, 1, 2), counting(kVoiceAccountSize, 3)));
  Bytes fax = box.reply(kFaxModeRow, after(target(2, 1, 1)));
  EXPECT_EQ(slice(fax, kTargetSize, fax.size()), hex("0aff"));
  Bytes sip = box.reply(kSipConfigRow, after(target(1, 4)));
  EXPECT_EQ(slice(sip, kTargetSize, sip.size()), counting(kSipConfigSize, 1));
  EXPECT_EQ(box.reply(kVoiceAccountRow, target(2, 1, 2)), counting(kVoiceAccountSize, 3));
  EXPECT_EQ(box.reply(kVoiceAccountRow, target(2, 1, 1)), Bytes(kVoiceAccountSize));
}

TEST(SnmpRows, StatusOfAVoiceLine) {
  SmallPon box;
  Bytes line = target(1, 2, 2);
  EXPECT_EQ(box.reply(kVoiceLineRow, line),
            record(32, {{0, hex("01000000 01000000 02000000 02000000")}, {20, word(1)}}));
  box.status(kSetVoiceLine, target_with(line, word(6)));
  EXPECT_EQ(slice(box.reply(kVoiceLineRow, line), 16, 28), hex("06000000 02000000 00000000"));
  box.status(kSetVoiceAccount, target_with(line, counting(kVoiceAccountSize, 1)));
  EXPECT_EQ(slice(box.reply(kVoiceLineRow, line), 16, 28), hex("06000000 03000000 01000000"));
  box.status(kOntConfiguration, target_with(target(1, 2), word(3)));
  EXPECT_EQ(slice(box.reply(kVoiceLineRow, line), 16, 28), hex("06000000 00000000 01000000"));
}

TEST(SnmpRows, WanConnectionsFollowTheirHead) {
  SmallPon box;
  Bytes head = record(88, {{0, hex("01000000 02000000 04000000 00000000")}, {20, word(125)}});
  EXPECT_EQ(box.reply(kWanInfoRow, target(2, 4)), head);
  Bytes first = record(kWanConnectionSize, {{0, word(1)}, {4, word(2)}, {120, hex("0102030405")}});
  Bytes second = record(kWanConnectionSize, {{0, word(1)}, {4, word(8)}, {8, text("voice")}});
  box.status(kWanConnection, target_with(target(2, 4), second));
  box.status(kWanConnection, target_with(target(2, 4), first));
  put(head, 16, word(2));
  put(head, 84, word(250));
  EXPECT_EQ(box.reply(kWanInfoRow, target(2, 4)), target_with(target_with(head, first), second));
}

TEST(SnmpRows, UniPortSettingsAreReadBack) {
  SmallPon box;
  Bytes port = target(1, 3, 2);
  EXPECT_EQ(box.status(kSetUniPortInfo, target_with(port, counting(kUniPortInfoSize, 1))), kOk);
  EXPECT_EQ(box.status(kSetUniPortPolicing, target_with(port, counting(kPolicingSize, 2))), kOk);
  EXPECT_EQ(box.status(kSetUniPortDownRate, target_with(port, counting(kDownRateSize, 3))), kOk);
  EXPECT_EQ(box.status(kSetUniPortVlanMode, target_with(port, counting(kUniPortVlanModeSize, 4))),
            kOk);
  EXPECT_EQ(box.status(kSetUniPortStrip, target_with(port, counting(kStripSize, 5))), kOk);
  EXPECT_EQ(box.status(kSetGroupLimit, target_with(port, word(300))), kOk);
  EXPECT_EQ(box.status(kAddPortMulticastVlans, target_with(port, hex("0a00 1400"))), kOk);
  EXPECT_EQ(slice(box.reply(kUniPortInfoRow, port), 0, 60),
            target_with(hex("01000000 01000000 03000000 02000000"), counting(kUniPortInfoSize, 1)));
  EXPECT_EQ(box.reply(kUniPortInfoRow, port).size(), 68U);
  auto tail = [](const Bytes &reply) { return slice(reply, kTargetSize, reply.size()); };
  EXPECT_EQ(tail(box.reply(kPolicingRow, port)), counting(kPolicingSize, 2));
  EXPECT_EQ(tail(box.reply(kDownRateRow, port)), counting(kDownRateSize, 3));
  EXPECT_EQ(tail(box.reply(kVlanModeRow, port)), counting(kUniPortVlanModeSize, 4));
  Bytes strip = tail(box.reply(kStripRow, target_with(port, Bytes(kStripSize, 0xEE))));
  EXPECT_EQ(strip, record(kStripSize + 2, {{0, counting(kStripSize, 5)}}));
  EXPECT_EQ(tail(box.reply(kMulticastVlansRow, port)), record(129, {{0, hex("02 0a00 1400")}}));
  Bytes limit = box.reply(kGroupLimitRow, port);
  EXPECT_EQ(limit.size(), kTargetSize);
  EXPECT_EQ(word_at(limit, 20), 300U);
}

Bytes profile_row(uint32_t selector, std::string_view name) {
  return record(kIptvProfileRowSize,
                {{0, word(selector)}, {4, text(name)}, {kChannelCountAt, hex("eeeeeeee")}});
}

Bytes channel_row(uint32_t selector, std::string_view profile, uint32_t number) {
  return record(kIptvChannelSize, {{0, word(selector)},
                                   {4, text(profile)},
                                   {kChannelNumberAt, word(number)},
                                   {kChannelSettingsAt, Bytes(kIptvSettingsSize, 0xEE)}});
}

void create_profile(SmallPon &box, std::string_view name,
                    std::initializer_list<uint32_t> channels) {
  ASSERT_EQ(box.status(kCreateIptvProfile, record(kIptvProfileSize, {{0, text(name)}})), kOk);
  for (uint32_t number : channels) {
    ASSERT_EQ(
        box.status(
            kAddIptvChannel,
            record(kIptvChannelSize + kIptvProfileSize,
                   {{kChannelNumberAt, word(number)},
                    {kChannelSettingsAt, Bytes(kIptvSettingsSize, static_cast<uint8_t>(number))},
                    {kIptvChannelSize, text(name)}})),
        kOk);
  }
}

TEST(SnmpRows, IptvProfilesAreWalkedByTheirNames) {
  SmallPon box;
  EXPECT_EQ(box.status(kIptvProfileRow, profile_row(2, "")), kNotFound);
  create_profile(box, "sports", {7});
  create_profile(box, "basic", {1, 2, 3});
  Bytes first = box.reply(kIptvProfileRow, profile_row(2, ""));
  EXPECT_EQ(first, record(kIptvProfileRowSize,
                          {{0, word(2)}, {4, text("basic")}, {kChannelCountAt, word(3)}}));
  Bytes second = box.reply(kIptvProfileRow, first);
  EXPECT_EQ(second, record(kIptvProfileRowSize,
                           {{0, word(2)}, {4, text("sports")}, {kChannelCountAt, word(1)}}));
  EXPECT_EQ(box.status(kIptvProfileRow, second), kNotFound);
  EXPECT_EQ(
      box.reply(kIptvProfileRow, profile_row(1, "sports")),
      record(kIptvProfileRowSize, {{0, word(1)}, {4, text("sports")}, {kChannelCountAt, word(1)}}));
  EXPECT_EQ(box.status(kIptvProfileRow, profile_row(1, "news")), kNotFound);
  EXPECT_EQ(slice(box.reply(kIptvProfileRow, profile_row(2, "news")), 4, 10), text("sports"));
  EXPECT_EQ(box.status(kIptvProfileRow, profile_row(0, "basic")), kBadValue);
  EXPECT_EQ(box.status(kIptvProfileRow, Bytes(kIptvProfileRowSize + 1)), kBadLength);
}

TEST(SnmpRows, IptvChannelsAreWalkedByProfileAndNumber) {
  SmallPon box;
  create_profile(box, "empty", {});
  create_profile(box, "basic", {300, 0, 7});
  create_profile(box, std::string(32, 'z'), {5});
  std::vector<std::pair<Bytes, uint32_t>> walked;
  Bytes row = channel_row(2, "", 0);
  for (box::Answer answer; (answer = box.ask(kIptvChannelRow, row)).status == 0;) {
    row = answer.reply;
    uint32_t number = word_at(row, kChannelNumberAt);
    EXPECT_EQ(slice(row, kChannelSettingsAt, kIptvChannelSize),
              Bytes(kIptvSettingsSize, static_cast<uint8_t>(number)));
    walked.emplace_back(slice(row, 4, 36), number);
  }
  Bytes basic = record(kIptvProfileSize, {{0, text("basic")}});
  EXPECT_EQ(walked, (std::vector<std::pair<Bytes, uint32_t>>{
                        {basic, 0}, {basic, 7}, {basic, 300}, {Bytes(32, 'z'), 5}}));
  EXPECT_EQ(box.reply(kIptvChannelRow, channel_row(1, "basic", 7)),
            record(kIptvChannelSize, {{0, word(1)},
                                      {4, text("basic")},
                                      {kChannelNumberAt, word(7)},
                                      {kChannelSettingsAt, Bytes(kIptvSettingsSize, 7)}}));
  EXPECT_EQ(box.status(kIptvChannelRow, channel_row(1, "basic", 8)), kNotFound);
  EXPECT_EQ(box.status(kIptvChannelRow, channel_row(1, "empty", 1)), kNotFound);
  EXPECT_EQ(box.status(kIptvChannelRow, channel_row(3, "basic", 7)), kBadValue);
  EXPECT_EQ(box.status(kIptvChannelRow, Bytes(kIptvChannelSize - 1)), kBadLength);
}

Bytes row_words(size_t size, std::initializer_list<uint32_t> values) {
  return record(size, {{0, words(values)}});
}

TEST(SnmpRows, VlansAreWalkedByTheirIds) {
  SmallPon box;
  EXPECT_EQ(box.status(kAddVlans, hex("0a000000 fe0f0000")), kOk);
  EXPECT_EQ(box.status(kAddTrunkTagged, target_with(port_record(3), hex("0a000000"))), kOk);
  EXPECT_EQ(
      box.reply(kVlanRow, row_words(kVlanRowSize, {2})),
      record(kVlanRowSize,
             {{0, word(2)}, {4, word(1)}, {8, text("default")}, {44, word(15)}, {48, word(4)}}));
  EXPECT_EQ(box.reply(kVlanRow, row_words(kVlanRowSize, {2, 1})),
            record(kVlanRowSize, {{0, word(2)}, {4, word(10)}, {40, word(4)}, {48, word(1)}}));
  EXPECT_EQ(word_at(box.reply(kVlanRow, row_words(kVlanRowSize, {2, 10})), 4), 4094U);
  EXPECT_EQ(box.status(kVlanRow, row_words(kVlanRowSize, {2, 4094})), kNotFound);
  EXPECT_EQ(box.status(kVlanRow, row_words(kVlanRowSize, {2, 0xFFFFFFFF})), kNotFound);
  EXPECT_EQ(word_at(box.reply(kVlanRow, row_words(kVlanRowSize, {1, 10})), 40), 4U);
  EXPECT_EQ(box.status(kVlanRow, row_words(kVlanRowSize, {1, 11})), kNotFound);
  EXPECT_EQ(box.status(kVlanRow, row_words(kVlanRowSize, {1, 0})), kNotFound);
  EXPECT_EQ(box.status(kVlanRow, row_words(kVlanRowSize, {1, 4095})), kNotFound);
  EXPECT_EQ(box.status(kVlanRow, row_words(kVlanRowSize, {0, 10})), kBadValue);
  EXPECT_EQ(box.status(kVlanRow, Bytes(kVlanRowSize - 4)), kBadLength);
}

TEST(SnmpRows, PortRowsShowWhatTheSettersWrote) {
  SmallPon box;
  EXPECT_EQ(box.reply(kPortRow, row_words(kPortRowSize, {2})),
            row_words(kPortRowSize, {2, 1, 1, 1, 1, 1000, 2, 0, 0, 0, 1, 0}));
  box.status(kSetVlanMode,
             port_record(2, {{kVlanModeSecondAt, word(20)}, {kVlanModeFirstAt, word(10)}}));
  box.status(kSetFlowControl, port_record(2, {{kFlowControlAt, word(5)}}));
  box.status(kSetMaxLink, port_record(2, {{kMaxLinkAt, word(9)}}));
  box.status(kSetRstpState, port_record(2, {{kRstpStateAt, word(0)}}));
  box.status(kSetPortEnable, port_record(2, {{kEnabledAt, word(0)}}));
  EXPECT_EQ(box.reply(kPortRow, row_words(kPortRowSize, {2, 1, 1})),
            row_words(kPortRowSize, {2, 1, 2, 0, 0, 0, 0, 10, 20, 5, 0, 9}));
  EXPECT_EQ(word_at(box.reply(kPortRow, row_words(kPortRowSize, {1, 1, 4})), 8), 4U);
  EXPECT_EQ(box.status(kPortRow, row_words(kPortRowSize, {2, 1, 4})), kNotFound);
  EXPECT_EQ(box.status(kPortRow, row_words(kPortRowSize, {2, 2, 1})), kNotFound);
  EXPECT_EQ(box.status(kPortRow, row_words(kPortRowSize, {1, 1, 5})), kNotFound);
  EXPECT_EQ(box.status(kPortRow, row_words(kPortRowSize, {1, 0, 0})), kNotFound);
  EXPECT_EQ(box.status(kPortRow, row_words(kPortRowSize, {7, 1, 1})), kBadValue);
  EXPECT_EQ(box.status(kPortRow, Bytes(kPortRowSize + 4)), kBadLength);
}

TEST(SnmpRows, AuthenticationRowsDescribeThePonInterfaces) {
  SmallPon box;
  EXPECT_EQ(box.reply(kAuthRow, row_words(kAuthRowSize, {2})),
            row_words(kAuthRowSize, {2, 1, 1, 0, 0, 0, 0, 4, 4, 0, 0}));
  EXPECT_EQ(box.status(kAllowMacs,
                       auth_entries(2, {auth_entry("022002000101"), auth_entry("022002000201")})),
            kOk);
  EXPECT_EQ(box.status(kSetAuthMode, mode_record(2, 1)), kOk);
  box.status(kOntConfiguration, target_with(target(2, 1), word(3)));
  EXPECT_EQ(box.reply(kAuthRow, row_words(kAuthRowSize, {2, 1, 1})),
            row_words(kAuthRowSize, {2, 1, 2, 1, 2, 0, 0, 4, 1, 1, 2}));
  EXPECT_EQ(box.status(kAuthRow, row_words(kAuthRowSize, {2, 1, 2})), kNotFound);
  EXPECT_EQ(box.status(kAuthRow, row_words(kAuthRowSize, {1, 1, 3})), kNotFound);
  EXPECT_EQ(box.status(kAuthRow, row_words(kAuthRowSize, {3, 1, 1})), kBadValue);
  EXPECT_EQ(box.status(kAuthRow, Bytes(kAuthRowSize - 1)), kBadLength);
}

}  // namespace

}  // namespace olt::test
