// The readers of SNMP tables: which row a request selects, what the row holds, and that it is the
// state that the setters change.

#include <gtest/gtest.h>

#include <set>

#include "tests/box/onu_support.h"

namespace {

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

void lay(Bytes &bytes, size_t offset, const Bytes &field) {
  std::copy(field.begin(), field.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
}

/// The target with another kind.
Bytes behind(Bytes target) {
  lay(target, 12, word(2));
  return target;
}

/// Stands before the first row.
Bytes before_all() {
  Bytes bytes(88, 0xEE);
  lay(bytes, 0, Bytes(20));
  lay(bytes, 12, word(2));
  return bytes;
}

uint32_t word_at(const Bytes &bytes, size_t offset) {
  return bytes[offset] | uint32_t{bytes[offset + 1]} << 8 | uint32_t{bytes[offset + 2]} << 16 |
         uint32_t{bytes[offset + 3]} << 24;
}

struct Place {
  uint32_t interface;
  uint32_t onu;
  uint32_t part;
  bool operator==(const Place &) const = default;
};

/// Passes the target that comes back again until there is no row behind it.
std::vector<Place> walk(SmallPon &box, uint32_t type, size_t tail) {
  std::vector<Place> places;
  Bytes request = before_all();
  for (;;) {
    olt::box::Answer answer = box.ask(2, type, target_with(request, Bytes(tail)));
    if (answer.status != 0) {
      EXPECT_EQ(answer.status, 4);
      return places;
    }
    request = slice(answer.reply, 0, 88);
    EXPECT_EQ(word_at(request, 0), 1U);
    EXPECT_EQ(word_at(request, 12), 2U);
    places.push_back({word_at(request, 4), word_at(request, 8), word_at(request, 16)});
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

TEST(SnmpRows, TablesAreWalkedAlongTheTargetsThatComeBack) {
  SmallPon box;
  EXPECT_EQ(walk(box, 89, 0), all(0));
  for (uint32_t type : {91U, 96U, 97U, 98U, 100U, 101U}) {
    EXPECT_EQ(walk(box, type, 0), all(2)) << type;
  }
  EXPECT_EQ(walk(box, 99, 34), all(2));
}

TEST(SnmpRows, TheTargetThatComesBackNamesTheRowAndKeepsTheRest) {
  SmallPon box;
  Bytes reply = box.reply(2, 97, behind(target(1, 4, 2)));
  Bytes expected = behind(target(2, 1, 1));
  lay(expected, 28, hex("022002000101"));
  EXPECT_EQ(slice(reply, 0, 88), expected);
  EXPECT_EQ(reply.size(), 100U);
  Bytes of_onu = box.reply(2, 89, behind(target(1, 4, 77)));
  expected = behind(target(2, 1, 77));
  lay(expected, 28, hex("022002000101"));
  EXPECT_EQ(slice(of_onu, 0, 88), expected);
}

TEST(SnmpRows, RowsThatDoNotExistAreRefused) {
  SmallPon box;
  for (uint32_t type : {87U, 88U, 89U, 93U, 94U}) {
    EXPECT_EQ(box.status(2, type, target(2, 5)), 4U) << type;
    EXPECT_EQ(box.status(2, type, target(3, 1)), 4U) << type;
    EXPECT_EQ(box.status(2, type, behind(target(2, 4))), 4U) << type;
  }
  for (uint32_t type : {90U, 91U, 92U, 95U, 96U, 97U, 98U, 100U, 101U}) {
    EXPECT_EQ(box.status(2, type, target(1, 1, 3)), 4U) << type;
    EXPECT_EQ(box.status(2, type, behind(target(2, 4, 2))), 4U) << type;
    Bytes other_kind = target(1, 1, 1);
    lay(other_kind, 12, word(3));
    EXPECT_EQ(box.status(2, type, other_kind), 3U) << type;
    EXPECT_EQ(box.status(2, type, Bytes(89)), 2U) << type;
  }
  EXPECT_EQ(box.status(2, 85, Bytes(235)), 2U);
  EXPECT_EQ(box.status(2, 86, Bytes(237)), 2U);
  EXPECT_EQ(box.status(2, 99, Bytes(88)), 2U);
  EXPECT_EQ(box.status(2, 99, Bytes(124)), 2U);
}

TEST(SnmpRows, BasicInformationOfAnOnu) {
  SmallPon box;
  box.status(2, 145, target_with(target(2, 3), record(125, {{0, word(1)}, {4, word(5)}})));
  box.advance(std::chrono::seconds(5));
  Bytes request = target_with(target(2, 3), Bytes(148, 0xEE));
  EXPECT_EQ(box.reply(2, 85, request), record(148, {{0, hex("01000000 02000000 03000000 00000000")},
                                                    {16, hex("022002000301")},
                                                    {24, word(1)},
                                                    {28, word(5)},
                                                    {32, word(2)},
                                                    {36, word(2)},
                                                    {40, word(1)},
                                                    {48, text("onu-1-2-3")}}));
  box.status(2, 147, target_with(target(2, 3), word(3)));
  EXPECT_EQ(slice(box.reply(2, 85, request), 24, 32), hex("02000000 00000000"));
  box.status(2, 114, record(80, {{0, word(1)}, {4, word(2)}, {36, word(1)}}));
  EXPECT_EQ(slice(box.reply(2, 85, request), 24, 28), word(3));
}

TEST(SnmpRows, BasicInformationOfALink) {
  SmallPon box;
  Bytes request = target_with(target(1, 2), Bytes(148, 0xEE));
  EXPECT_EQ(box.reply(2, 86, request), record(148, {{0, hex("01000000 01000000 02000000 00000000")},
                                                    {16, hex("022001000201")},
                                                    {24, word(1)}}));
}

TEST(SnmpRows, GlobalInformationCountsThePartsBehindItsHead) {
  SmallPon box;
  box.status(2, 138, target_with(target(1, 1, 2), word(9)));
  box.status(2, 145, target_with(target(1, 1), record(125, {{0, word(1)}, {4, word(5)}})));
  EXPECT_EQ(box.reply(2, 87, target(1, 1)),
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
  Bytes interface_name(32, 0xEE);
  lay(interface_name, 0, Bytes{'w', 'a', 'n', '1', 0});
  box.status(2, 143, target_with(target(1, 1), interface_name));
  box.status(2, 138, target_with(target(1, 1, 1), word(1)));
  box.status(2, 138, target_with(target(1, 1, 2), word(1)));
  box.status(2, 136, target_with(target(1, 1, 2), counting(80, 1)));
  EXPECT_EQ(box.reply(2, 88, target(1, 1)),
            record(92, {{0, hex("01000000 01000000 01000000 00000000")},
                        {16, hex("022001000101")},
                        {24, word(1)},
                        {28, word(2)},
                        {32, text("wan1")},
                        {64, word(2)},
                        {68, word(1)},
                        {72, word(1)}}));
  EXPECT_EQ(
      box.reply(2, 94, target(1, 1)),
      record(88,
             {{0, hex("01000000 01000000 01000000 00000000")}, {16, word(1)}, {20, text("wan1")}}));
  EXPECT_EQ(slice(box.reply(2, 94, target(1, 2)), 16, 88), Bytes(72));
}

TEST(SnmpRows, WhatVoiceSettersWriteTheReadersGiveBack) {
  SmallPon box;
  box.status(2, 141, target_with(target(2, 1, 2), hex("0aff")));
  box.status(2, 142, target_with(target(2, 1), counting(45, 1)));
  box.status(2, 136, target_with(target(2, 1, 2), counting(80, 3)));
  Bytes fax = box.reply(2, 91, behind(target(2, 1, 1)));
  EXPECT_EQ(slice(fax, 88, fax.size()), hex("0aff"));
  Bytes sip = box.reply(2, 89, behind(target(1, 4)));
  EXPECT_EQ(slice(sip, 88, sip.size()), counting(45, 1));
  EXPECT_EQ(box.reply(2, 90, target(2, 1, 2)), counting(80, 3));
  EXPECT_EQ(box.reply(2, 90, target(2, 1, 1)), Bytes(80));
}

TEST(SnmpRows, StatusOfAVoiceLine) {
  SmallPon box;
  Bytes line = target(1, 2, 2);
  EXPECT_EQ(box.reply(2, 92, line),
            record(32, {{0, hex("01000000 01000000 02000000 02000000")}, {20, word(1)}}));
  box.status(2, 138, target_with(line, word(6)));
  EXPECT_EQ(slice(box.reply(2, 92, line), 16, 28), hex("06000000 02000000 00000000"));
  box.status(2, 136, target_with(line, counting(80, 1)));
  EXPECT_EQ(slice(box.reply(2, 92, line), 16, 28), hex("06000000 03000000 01000000"));
  box.status(2, 147, target_with(target(1, 2), word(3)));
  EXPECT_EQ(slice(box.reply(2, 92, line), 16, 28), hex("06000000 00000000 01000000"));
}

TEST(SnmpRows, WanConnectionsStandBehindTheirHead) {
  SmallPon box;
  Bytes head = record(88, {{0, hex("01000000 02000000 04000000 00000000")}, {20, word(125)}});
  EXPECT_EQ(box.reply(2, 93, target(2, 4)), head);
  Bytes first = record(125, {{0, word(1)}, {4, word(2)}, {120, hex("0102030405")}});
  Bytes second = record(125, {{0, word(1)}, {4, word(8)}, {8, text("voice")}});
  box.status(2, 145, target_with(target(2, 4), second));
  box.status(2, 145, target_with(target(2, 4), first));
  lay(head, 16, word(2));
  lay(head, 84, word(250));
  EXPECT_EQ(box.reply(2, 93, target(2, 4)), target_with(target_with(head, first), second));
}

TEST(SnmpRows, WhatUniPortSettersWriteTheReadersGiveBack) {
  SmallPon box;
  Bytes port = target(1, 3, 2);
  EXPECT_EQ(box.status(2, 132, target_with(port, counting(44, 1))), 0U);
  EXPECT_EQ(box.status(2, 130, target_with(port, counting(16, 2))), 0U);
  EXPECT_EQ(box.status(2, 118, target_with(port, counting(12, 3))), 0U);
  EXPECT_EQ(box.status(2, 129, target_with(port, counting(36, 4))), 0U);
  EXPECT_EQ(box.status(2, 127, target_with(port, counting(34, 5))), 0U);
  EXPECT_EQ(box.status(2, 121, target_with(port, word(300))), 0U);
  EXPECT_EQ(box.status(2, 124, target_with(port, hex("0a00 1400"))), 0U);
  EXPECT_EQ(slice(box.reply(2, 95, port), 0, 60),
            target_with(hex("01000000 01000000 03000000 02000000"), counting(44, 1)));
  EXPECT_EQ(box.reply(2, 95, port).size(), 68U);
  auto tail = [](const Bytes &reply) { return slice(reply, 88, reply.size()); };
  EXPECT_EQ(tail(box.reply(2, 96, port)), counting(16, 2));
  EXPECT_EQ(tail(box.reply(2, 97, port)), counting(12, 3));
  EXPECT_EQ(tail(box.reply(2, 98, port)), counting(36, 4));
  Bytes strip = tail(box.reply(2, 99, target_with(port, Bytes(34, 0xEE))));
  EXPECT_EQ(strip, record(36, {{0, counting(34, 5)}}));
  EXPECT_EQ(tail(box.reply(2, 100, port)), record(129, {{0, hex("02 0a00 1400")}}));
  Bytes limit = box.reply(2, 101, port);
  EXPECT_EQ(limit.size(), 88U);
  EXPECT_EQ(word_at(limit, 20), 300U);
}

Bytes profile_row(uint32_t selector, std::string_view name) {
  return record(40, {{0, word(selector)}, {4, text(name)}, {36, hex("eeeeeeee")}});
}

Bytes channel_row(uint32_t selector, std::string_view profile, uint32_t number) {
  return record(
      56, {{0, word(selector)}, {4, text(profile)}, {36, word(number)}, {40, Bytes(16, 0xEE)}});
}

void create_profile(SmallPon &box, std::string_view name,
                    std::initializer_list<uint32_t> channels) {
  ASSERT_EQ(box.status(2, 157, record(32, {{0, text(name)}})), 0U);
  for (uint32_t number : channels) {
    ASSERT_EQ(box.status(2, 160,
                         record(88, {{36, word(number)},
                                     {40, Bytes(16, static_cast<uint8_t>(number))},
                                     {56, text(name)}})),
              0U);
  }
}

TEST(SnmpRows, IptvProfilesAreWalkedByTheirNames) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 164, profile_row(2, "")), 4U);
  create_profile(box, "sports", {7});
  create_profile(box, "basic", {1, 2, 3});
  Bytes first = box.reply(2, 164, profile_row(2, ""));
  EXPECT_EQ(first, record(40, {{0, word(2)}, {4, text("basic")}, {36, word(3)}}));
  Bytes second = box.reply(2, 164, first);
  EXPECT_EQ(second, record(40, {{0, word(2)}, {4, text("sports")}, {36, word(1)}}));
  EXPECT_EQ(box.status(2, 164, second), 4U);
  EXPECT_EQ(box.reply(2, 164, profile_row(1, "sports")),
            record(40, {{0, word(1)}, {4, text("sports")}, {36, word(1)}}));
  EXPECT_EQ(box.status(2, 164, profile_row(1, "news")), 4U);
  EXPECT_EQ(slice(box.reply(2, 164, profile_row(2, "news")), 4, 10), text("sports"));
  EXPECT_EQ(box.status(2, 164, profile_row(0, "basic")), 3U);
  EXPECT_EQ(box.status(2, 164, Bytes(41)), 2U);
}

TEST(SnmpRows, IptvChannelsAreWalkedByProfileAndNumber) {
  SmallPon box;
  create_profile(box, "empty", {});
  create_profile(box, "basic", {300, 0, 7});
  create_profile(box, std::string(32, 'z'), {5});
  std::vector<std::pair<Bytes, uint32_t>> walked;
  Bytes row = channel_row(2, "", 0);
  for (olt::box::Answer answer; (answer = box.ask(2, 165, row)).status == 0;) {
    row = answer.reply;
    uint32_t number = word_at(row, 36);
    EXPECT_EQ(slice(row, 40, 56), Bytes(16, static_cast<uint8_t>(number)));
    walked.emplace_back(slice(row, 4, 36), number);
  }
  Bytes basic = record(32, {{0, text("basic")}});
  EXPECT_EQ(walked, (std::vector<std::pair<Bytes, uint32_t>>{
                        {basic, 0}, {basic, 7}, {basic, 300}, {Bytes(32, 'z'), 5}}));
  EXPECT_EQ(box.reply(2, 165, channel_row(1, "basic", 7)),
            record(56, {{0, word(1)}, {4, text("basic")}, {36, word(7)}, {40, Bytes(16, 7)}}));
  EXPECT_EQ(box.status(2, 165, channel_row(1, "basic", 8)), 4U);
  EXPECT_EQ(box.status(2, 165, channel_row(1, "empty", 1)), 4U);
  EXPECT_EQ(box.status(2, 165, channel_row(3, "basic", 7)), 3U);
  EXPECT_EQ(box.status(2, 165, Bytes(55)), 2U);
}

Bytes row_words(size_t size, std::initializer_list<uint32_t> words) {
  Bytes bytes(size);
  size_t at = 0;
  for (uint32_t value : words) {
    lay(bytes, at, word(value));
    at += 4;
  }
  return bytes;
}

TEST(SnmpRows, VlansAreWalkedByTheirIds) {
  SmallPon box;
  EXPECT_EQ(box.status(2, 19, hex("0a000000 fe0f0000")), 0U);
  EXPECT_EQ(
      box.status(2, 25, target_with(record(80, {{0, word(1)}, {4, word(3)}}), hex("0a000000"))),
      0U);
  EXPECT_EQ(
      box.reply(2, 73, row_words(52, {2})),
      record(52,
             {{0, word(2)}, {4, word(1)}, {8, text("default")}, {44, word(15)}, {48, word(4)}}));
  EXPECT_EQ(box.reply(2, 73, row_words(52, {2, 1})),
            record(52, {{0, word(2)}, {4, word(10)}, {40, word(4)}, {48, word(1)}}));
  EXPECT_EQ(word_at(box.reply(2, 73, row_words(52, {2, 10})), 4), 4094U);
  EXPECT_EQ(box.status(2, 73, row_words(52, {2, 4094})), 4U);
  EXPECT_EQ(box.status(2, 73, row_words(52, {2, 0xFFFFFFFF})), 4U);
  EXPECT_EQ(word_at(box.reply(2, 73, row_words(52, {1, 10})), 40), 4U);
  EXPECT_EQ(box.status(2, 73, row_words(52, {1, 11})), 4U);
  EXPECT_EQ(box.status(2, 73, row_words(52, {1, 0})), 4U);
  EXPECT_EQ(box.status(2, 73, row_words(52, {1, 4095})), 4U);
  EXPECT_EQ(box.status(2, 73, row_words(52, {0, 10})), 3U);
  EXPECT_EQ(box.status(2, 73, Bytes(48)), 2U);
}

TEST(SnmpRows, PortsShowWhatTheirSettersWrote) {
  SmallPon box;
  EXPECT_EQ(box.reply(2, 75, row_words(48, {2})),
            row_words(48, {2, 1, 1, 1, 1, 1000, 2, 0, 0, 0, 1, 0}));
  box.status(2, 24, record(80, {{0, word(1)}, {4, word(2)}, {28, word(20)}, {32, word(10)}}));
  box.status(2, 69, record(80, {{0, word(1)}, {4, word(2)}, {40, word(5)}}));
  box.status(2, 102, record(80, {{0, word(1)}, {4, word(2)}, {76, word(9)}}));
  box.status(2, 67, record(80, {{0, word(1)}, {4, word(2)}, {60, word(0)}}));
  box.status(2, 14, record(80, {{0, word(1)}, {4, word(2)}, {16, word(0)}}));
  EXPECT_EQ(box.reply(2, 75, row_words(48, {2, 1, 1})),
            row_words(48, {2, 1, 2, 0, 0, 0, 0, 10, 20, 5, 0, 9}));
  EXPECT_EQ(word_at(box.reply(2, 75, row_words(48, {1, 1, 4})), 8), 4U);
  EXPECT_EQ(box.status(2, 75, row_words(48, {2, 1, 4})), 4U);
  EXPECT_EQ(box.status(2, 75, row_words(48, {2, 2, 1})), 4U);
  EXPECT_EQ(box.status(2, 75, row_words(48, {1, 1, 5})), 4U);
  EXPECT_EQ(box.status(2, 75, row_words(48, {1, 0, 0})), 4U);
  EXPECT_EQ(box.status(2, 75, row_words(48, {7, 1, 1})), 3U);
  EXPECT_EQ(box.status(2, 75, Bytes(52)), 2U);
}

TEST(SnmpRows, AuthenticationIsThatOfThePonInterfaces) {
  SmallPon box;
  EXPECT_EQ(box.reply(2, 80, row_words(60, {2})), row_words(60, {2, 1, 1, 0, 0, 0, 0, 4, 4, 0, 0}));
  EXPECT_EQ(box.status(2, 112,
                       olt::tests::auth_entries(2, {olt::tests::auth_entry("022002000101"),
                                                    olt::tests::auth_entry("022002000201")})),
            0U);
  EXPECT_EQ(box.status(2, 114, record(80, {{0, word(1)}, {4, word(2)}, {36, word(1)}})), 0U);
  box.status(2, 147, target_with(target(2, 1), word(3)));
  EXPECT_EQ(box.reply(2, 80, row_words(60, {2, 1, 1})),
            row_words(60, {2, 1, 2, 1, 2, 0, 0, 4, 1, 1, 2}));
  EXPECT_EQ(box.status(2, 80, row_words(60, {2, 1, 2})), 4U);
  EXPECT_EQ(box.status(2, 80, row_words(60, {1, 1, 3})), 4U);
  EXPECT_EQ(box.status(2, 80, row_words(60, {3, 1, 1})), 3U);
  EXPECT_EQ(box.status(2, 80, Bytes(59)), 2U);
}

}  // namespace
