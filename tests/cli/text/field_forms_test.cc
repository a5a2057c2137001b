#include "cli/text/field_forms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>

#include "catalog/catalog.h"

namespace olt::test {

namespace {

using olt::Bytes;
using olt::catalog::Field;
using olt::catalog::FieldKind;
using olt::catalog::ValueName;
using olt::cli::BadValue;
using olt::cli::form_of;
using olt::cli::parse_field;

Field field(FieldKind kind, uint32_t width) {
  return {.name = "field", .offset = 0, .width = width, .kind = kind};
}

std::string hex(const Field &field, const std::string &text) {
  return olt::to_hex(parse_field(field, text));
}

std::string error_of(const Field &field, const std::string &text) {
  try {
    parse_field(field, text);
  } catch (const BadValue &bad) {
    return bad.what();
  }
  return "no error";
}

TEST(FieldForms, ReadEachKind) {
  EXPECT_EQ(hex(field(FieldKind::kText, 4), "abc"), "61626300");
  EXPECT_EQ(hex(field(FieldKind::kPadded, 4), "abcd"), "61626364");
  EXPECT_EQ(hex(field(FieldKind::kNumber, 4), "0x01020304"), "04030201");
  EXPECT_EQ(hex(field(FieldKind::kNumber, 2), "258"), "0201");
  EXPECT_EQ(hex(field(FieldKind::kNumbers, 12), "1,2"), "010000000200000000000000");
  EXPECT_EQ(hex(field(FieldKind::kMac, 6), "02:00:00:00:00:0A"), "02000000000a");
  EXPECT_EQ(hex(field(FieldKind::kOnt, 12), "1/2/3"), "010000000200000003000000");
  EXPECT_EQ(hex(field(FieldKind::kOnt, 20), "1/2/3:4"), "0100000002000000030000000100000004000000");
  EXPECT_EQ(hex(field(FieldKind::kBytes, 2), "0a 0b"), "0a0b");
}

TEST(FieldForms, SayWhatIsWrong) {
  EXPECT_EQ(error_of(field(FieldKind::kText, 4), "abcd"), "4 bytes given");
  EXPECT_EQ(error_of(field(FieldKind::kPadded, 4), "abcde"), "5 bytes given");
  EXPECT_EQ(error_of(field(FieldKind::kNumber, 4), "-1"), "'-1' given");
  EXPECT_EQ(error_of(field(FieldKind::kNumber, 2), "65536"), "'65536' is too large");
  EXPECT_EQ(error_of(field(FieldKind::kNumbers, 4), "1,2"), "2 numbers given");
  EXPECT_EQ(error_of(field(FieldKind::kMac, 6), "0200000001"), "'0200000001' is not a MAC address");
  EXPECT_EQ(error_of(field(FieldKind::kOnt, 12), "1/2/3:4"), "a UNI port is not taken here");
  EXPECT_EQ(error_of(field(FieldKind::kOnt, 88), "1/2"), "'1/2' given");
  EXPECT_EQ(error_of(field(FieldKind::kBytes, 2), "0a"), "1 byte given");
  EXPECT_EQ(error_of(field(FieldKind::kBytes, 1), "x"), "'x' is not pairs of hex digits");
}

TEST(FieldForms, HexAndPlainNumbersAreTaken) {
  EXPECT_EQ(hex(field(FieldKind::kMac, 6), "02000000000A"), "02000000000a");
  EXPECT_EQ(hex(field(FieldKind::kMac, 6), "02 00 00 00 00 0a"), "02000000000a");
  EXPECT_EQ(hex(field(FieldKind::kIpv4, 4), "c0000201"), "c0000201");
  EXPECT_EQ(hex(field(FieldKind::kIpv4, 4), "10 00 00 01"), "10000001");
  EXPECT_EQ(hex(field(FieldKind::kVersion, 3), "01 02 0a"), "01020a");
  EXPECT_EQ(hex(field(FieldKind::kVersion, 1), "12"), "0c");
  EXPECT_EQ(hex(field(FieldKind::kVlans, 4), "0a00 1400"), "0a001400");
  EXPECT_EQ(hex(field(FieldKind::kVlans, 2), "1000"), "e803");
  EXPECT_EQ(hex(field(FieldKind::kInterface, 8), "1,2"), "0100000002000000");
  EXPECT_EQ(hex(field(FieldKind::kOnt, 12), "1,2,3"), "010000000200000003000000");
  EXPECT_EQ(hex(field(FieldKind::kSigned, 2), "0xfb2e"), "2efb");
  EXPECT_EQ(error_of(field(FieldKind::kSigned, 1), "0x100"), "'0x100' given");
  EXPECT_EQ(error_of(field(FieldKind::kIpv4, 4), "c00002"), "'c00002' given");
  EXPECT_EQ(error_of(field(FieldKind::kPadded, 4), "61626364"), "8 bytes given");
}

Bytes bytes(const std::string &hex) {
  return *olt::from_hex(hex);
}

std::string text(const Field &field, const std::string &hex) {
  return form_of(field.kind).text(field, bytes(hex));
}

std::string json(const Field &field, const std::string &hex) {
  return form_of(field.kind).json(field, bytes(hex)).dump();
}

constexpr ValueName kColours[] = {{0, "red"}, {2, "green"}, {0x80000001, "blue"}};
constexpr ValueName kBits[] = {{1, "up"}, {2, "full"}, {8, "plugged"}};

Field colour() {
  return {
      .name = "colour", .offset = 0, .width = 4, .kind = FieldKind::kNumber, .values = kColours};
}

TEST(FieldForms, NumbersHaveNamesUnitsAndSigns) {
  EXPECT_EQ(text(colour(), "02000000"), "green");
  EXPECT_EQ(json(colour(), "02000000"), R"("green")");
  EXPECT_EQ(text(colour(), "03000000"), "3");
  EXPECT_EQ(json(colour(), "03000000"), "3");
  EXPECT_EQ(hex(colour(), "blue"), "01000080");
  EXPECT_EQ(hex(colour(), "7"), "07000000");
  EXPECT_EQ(form_of(FieldKind::kNumber).expected(colour()), "red, green, blue, or a number");

  Field vlan = field(FieldKind::kVlan, 2);
  EXPECT_EQ(form_of(FieldKind::kVlan).expected(vlan), "a VLAN id");
  EXPECT_EQ(hex(vlan, "258"), "0201");
  vlan.values = kColours;
  EXPECT_EQ(form_of(FieldKind::kVlan).expected(vlan), "red, green, blue, or a VLAN id");

  Field rate = field(FieldKind::kNumber, 2);
  rate.unit = "kbit/s";
  EXPECT_EQ(text(rate, "e803"), "1000 kbit/s");
  EXPECT_EQ(json(rate, "e803"), "1000");
  EXPECT_EQ(hex(rate, "1000 kbit/s"), "e803");
  EXPECT_EQ(hex(rate, "1000kbit/s"), "e803");
  EXPECT_EQ(error_of(rate, "1000 kg"), "'1000 kg' given");

  Field power = field(FieldKind::kSigned, 2);
  power.unit = "dBm";
  power.decimals = 2;
  EXPECT_EQ(text(power, "2efb"), "-12.34 dBm");
  EXPECT_EQ(json(power, "2efb"), "-12.34");
  EXPECT_EQ(hex(power, "-12.34"), "2efb");
  EXPECT_EQ(hex(power, "-0.5 dBm"), "ceff");
  EXPECT_EQ(text(power, "0080"), "-327.68 dBm");
  EXPECT_EQ(error_of(power, "327.68"), "'327.68' given");
  EXPECT_EQ(error_of(power, "1."), "'1.' given");
}

TEST(FieldForms, BitsAreNamesOrPorts) {
  Field flags = field(FieldKind::kFlags, 1);
  flags.values = kBits;
  EXPECT_EQ(text(flags, "0b"), "up,full,plugged");
  EXPECT_EQ(text(flags, "41"), "up,0x40");
  EXPECT_EQ(text(flags, "00"), "none");
  EXPECT_EQ(json(flags, "03"), R"(["up","full"])");
  EXPECT_EQ(hex(flags, "up,0x40"), "41");
  EXPECT_EQ(hex(flags, "none"), "00");
  EXPECT_EQ(error_of(flags, "up,down"), "'down' given");

  Field ports = field(FieldKind::kPorts, 4);
  EXPECT_EQ(text(ports, "f3000080"), "1,2,5-8,32");
  EXPECT_EQ(json(ports, "03000000"), "[1,2]");
  EXPECT_EQ(text(ports, "00000000"), "none");
  EXPECT_EQ(hex(ports, "1,2,5-8,32"), "f3000080");
  EXPECT_EQ(error_of(ports, "33"), "'33' is too large");
  EXPECT_EQ(error_of(ports, "0"), "'0' given");
  EXPECT_EQ(error_of(ports, "5-2"), "'5-2' ends before it begins");
}

TEST(FieldForms, TimesListsAndAddresses) {
  Field time = field(FieldKind::kDuration, 4);
  EXPECT_EQ(text(time, "2d2a0100"), "21h12m13s");
  EXPECT_EQ(text(time, "00000000"), "0s");
  EXPECT_EQ(json(time, "7d000000"), "125");
  EXPECT_EQ(hex(time, "2m5s"), "7d000000");
  EXPECT_EQ(hex(time, "125"), "7d000000");
  EXPECT_EQ(error_of(time, "2x"), "'2x' given");
  EXPECT_EQ(error_of(time, "49711d"), "'49711d' given");

  Field vlans = field(FieldKind::kVlans, 10);
  EXPECT_EQ(text(vlans, "0a001400150016000000"), "10,20-22");
  EXPECT_EQ(json(vlans, "0a001400000000000000"), "[10,20]");
  EXPECT_EQ(hex(vlans, "10,20-22"), "0a001400150016000000");
  EXPECT_EQ(error_of(vlans, "1-6"), "6 VLAN ids given");

  EXPECT_EQ(text(field(FieldKind::kIpv4, 4), "c0000201"), "192.0.2.1");
  EXPECT_EQ(hex(field(FieldKind::kIpv4, 4), "192.0.2.1"), "c0000201");
  EXPECT_EQ(error_of(field(FieldKind::kIpv4, 4), "192.0.2"), "'192.0.2' given");
  EXPECT_EQ(text(field(FieldKind::kMac, 6), "020100000500"), "02:01:00:00:05:00");
  EXPECT_EQ(text(field(FieldKind::kInterface, 8), "0100000002000000"), "1/2");
  EXPECT_EQ(hex(field(FieldKind::kInterface, 8), "1/2"), "0100000002000000");
  EXPECT_EQ(text(field(FieldKind::kOnt, 12), "010000000200000003000000"), "1/2/3");
  EXPECT_EQ(text(field(FieldKind::kOnt, 20), "0100000002000000030000000100000004000000"),
            "1/2/3:4");
  EXPECT_EQ(text(field(FieldKind::kVersion, 3), "01020a"), "1.2.10");
  EXPECT_EQ(hex(field(FieldKind::kVersion, 3), "1.2.10"), "01020a");
  EXPECT_EQ(text(field(FieldKind::kNumbers, 8), "0201000005000000"), "258,5");
}

TEST(FieldForms, TextsKeepWhatIsNotPrintable) {
  Field name = field(FieldKind::kPadded, 8);
  EXPECT_EQ(text(name, "61c3a9001b000000"), "a\xc3\xa9");
  EXPECT_EQ(text(name, "1bff5c6100000000"), "\\x1b\\xff\\\\a");
  EXPECT_EQ(hex(name, "\\x1b\\xff\\\\a"), "1bff5c6100000000");
  EXPECT_EQ(hex(name, "a\\b"), "615c620000000000");
  EXPECT_EQ(hex(name, R"("a\\b\n")"), "615c620a00000000");
  EXPECT_EQ(hex(name, "[1,2]"), "5b312c325d000000");
  EXPECT_EQ(text(name, "2261622200000000"), R"(\x22ab")");
  EXPECT_EQ(text(name, "2261620000000000"), R"("ab)");
}

constexpr Field kInner[] = {
    {.name = "colour", .offset = 0, .width = 4, .kind = FieldKind::kNumber, .values = kColours},
    {.name = "data", .offset = 4, .width = 2, .kind = FieldKind::kBytes},
};

TEST(FieldForms, RecordsFollowEachOther) {
  Field parts = field(FieldKind::kRecords, Field::kToTheEnd);
  parts.record = kInner;
  parts.record_size = 6;
  EXPECT_EQ(text(parts,
                 "020000000a0b"
                 "05000000ffff"),
            "{colour=green data=0a0b} {colour=5 data=ffff}");
  EXPECT_EQ(json(parts, "020000000a0b"), R"([{"colour":"green","data":"0a0b"}])");
  EXPECT_EQ(text(parts, ""), "none");
  EXPECT_EQ(text(parts,
                 "020000000a0b"
                 "0102"),
            "{colour=green data=0a0b} 0102");
  EXPECT_EQ(hex(parts, "{colour=green data=0a0b} 0102"), "020000000a0b0102");
  EXPECT_EQ(hex(parts, "{colour=green data=0a0b} {colour=5 data=ffff}"),
            "020000000a0b05000000ffff");
  EXPECT_EQ(hex(parts, R"([{"colour":"green","data":"0a0b"}])"), "020000000a0b");
  EXPECT_EQ(error_of(parts, "{colour=green"), "'{colour=green' given");
  EXPECT_EQ(error_of(parts, "{size=3}"), "there is no field 'size'");
  parts.width = 12;
  EXPECT_EQ(hex(parts, "{colour=green data=0a0b}"), "020000000a0b000000000000");
  EXPECT_EQ(error_of(parts, "{colour=5} {colour=5} {colour=5}"), "18 bytes given");
}

constexpr Field kTitled[] = {
    {.name = "title", .offset = 0, .width = 8, .kind = FieldKind::kPadded},
    {.name = "size", .offset = 8, .width = 1, .kind = FieldKind::kNumber},
};

TEST(FieldForms, TextsInRecordsMayHoldAnyCharacter) {
  Field parts = field(FieldKind::kRecords, Field::kToTheEnd);
  parts.record = kTitled;
  parts.record_size = 9;
  EXPECT_EQ(text(parts,
                 "617d206227220000"
                 "07"),
            R"({'title=a} b'\''"' size=7})");
  EXPECT_EQ(hex(parts, R"({title='a} b'\''"' size=7})"), "617d20622722000007");
  EXPECT_EQ(hex(parts, R"({title="a}" size=7} {size=8})"), "617d00000000000007000000000000000008");
  EXPECT_EQ(hex(parts, R"([{"title":"\\x41}","size":7}])"), "5c7834317d00000007");
  EXPECT_EQ(hex(parts, R"([{"title":"[1]"}])"), "5b315d000000000000");
  EXPECT_EQ(error_of(parts, "{title='a}"), "'{title='a}' given");
  EXPECT_EQ(error_of(parts, "{title}"), "a word is not FIELD=VALUE");
  EXPECT_EQ(error_of(parts, R"([{"colour":"red"}])"), "there is no field 'colour'");
}

TEST(FieldForms, JsonMayHaveAnExponent) {
  Field power = field(FieldKind::kSigned, 4);
  power.decimals = 9;
  EXPECT_EQ(json(power, "ffffffff"), "-1e-09");
  EXPECT_EQ(hex(power, "-1e-09"), "ffffffff");
  EXPECT_EQ(error_of(power, "1e-10"), "'1e-10' given");
  power.decimals = 5;
  EXPECT_EQ(json(power, "abf7ffff"), "-0.021329999999999998");
  EXPECT_EQ(hex(power, "-0.021329999999999998"), "abf7ffff");
  EXPECT_EQ(error_of(power, "-0.021331"), "'-0.021331' given");
}

/// Bytes that the field can have: any, but after the zero of a text only zeros. Half of them have
/// a meaning in some text form.
Bytes some_bytes(const Field &field, std::minstd_rand &random) {
  size_t width =
      field.width == Field::kToTheEnd ? std::max<size_t>(field.record_size * 3, 5) : field.width;
  Bytes bytes(width);
  constexpr std::string_view kSpecial = R"({}[]"'\ =#,x01-)";
  bool is_special = random() % 2 == 0;
  for (uint8_t &byte : bytes) {
    size_t any = random() >> 8;
    byte = static_cast<uint8_t>(any);
    if (is_special) byte = static_cast<uint8_t>(kSpecial[any % kSpecial.size()]);
  }
  bool is_text = field.kind == FieldKind::kText || field.kind == FieldKind::kPadded ||
                 field.kind == FieldKind::kListing;
  if (is_text) std::fill(std::find(bytes.begin(), bytes.end(), 0), bytes.end(), 0);
  if (field.kind == FieldKind::kText) bytes.back() = 0;
  if (!field.values.empty() && random() % 2 == 0) {
    uint32_t value = field.values[random() % field.values.size()].value;
    memcpy(bytes.data(), &value, width);
  }
  if (field.kind == FieldKind::kNumber && field.max < UINT32_MAX) {
    uint32_t number = static_cast<uint32_t>(random()) % (field.max + 1);
    memcpy(bytes.data(), &number, width);
  }
  // A text within a record ends like any other.
  for (size_t record = 0; record + field.record_size <= width && !field.record.empty();
       record += field.record_size) {
    for (const Field &inner : field.record) {
      if (inner.kind != FieldKind::kPadded) continue;
      auto begin = bytes.begin() + static_cast<ptrdiff_t>(record + inner.offset);
      auto end = begin + static_cast<ptrdiff_t>(inner.width);
      std::fill(std::find(begin, end, 0), end, 0);
    }
  }
  return bytes;
}

void expect_back(Field field, std::minstd_rand &random) {
  for (int i = 0; i < 10; ++i) {
    Bytes bytes = some_bytes(field, random);
    Field there = field;
    there.width = static_cast<uint32_t>(bytes.size());
    std::string text = form_of(field.kind).text(there, bytes);
    EXPECT_EQ(olt::to_hex(parse_field(there, text)), olt::to_hex(bytes))
        << field.name << ": " << text;
    EXPECT_EQ(form_of(field.kind).text(there, parse_field(there, text)), text) << field.name;
    std::string json = form_of(field.kind)
                           .json(there, bytes)
                           .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    bool is_utf8 = nlohmann::ordered_json::parse(json) == form_of(field.kind).json(there, bytes);
    if (!is_utf8) continue;
    EXPECT_EQ(olt::to_hex(parse_field(there, json)), olt::to_hex(bytes))
        << field.name << ": " << json;
  }
}

TEST(FieldForms, WhatIsShownCanBeGivenBack) {
  std::minstd_rand random(20'261'122);
  size_t fields = 0;
  auto each = [&](const Field &field) {
    // The words of a target beyond its name are fields of their own.
    if (field.kind == FieldKind::kOnt && field.width > 12) return;
    expect_back(field, random);
    ++fields;
  };
  for (const auto &family : olt::catalog::families()) {
    for (const auto &operation : family.operations) {
      for (const auto &argument : operation.arguments()) {
        if (argument.kind == olt::catalog::Kind::kValue && argument.whole().width > 0)
          each(argument.whole());
        for (const Field &field : argument.fields) each(field);
      }
    }
  }
  EXPECT_GT(fields, 1000U);
}

/// Of the forms that only layouts of one's own have.
TEST(FieldForms, WhatIsShownOfEachKindCanBeGivenBack) {
  std::minstd_rand random(20'261'122);
  auto each = [&random](FieldKind kind, std::initializer_list<uint32_t> widths) {
    for (uint32_t width : widths) expect_back(field(kind, width), random);
  };
  each(FieldKind::kText, {1, 2, 12});
  each(FieldKind::kPadded, {1, 2, 3, 12});
  each(FieldKind::kNumber, {1, 2, 4});
  each(FieldKind::kVlan, {1, 2, 4});
  each(FieldKind::kDuration, {1, 2, 4});
  each(FieldKind::kPorts, {1, 2, 4});
  each(FieldKind::kNumbers, {4, 8, 40});
  each(FieldKind::kVlans, {2, 4, 10});
  each(FieldKind::kMac, {6});
  each(FieldKind::kIpv4, {4});
  each(FieldKind::kInterface, {8});
  each(FieldKind::kOnt, {12});
  each(FieldKind::kVersion, {1, 2, 4, 7});
  each(FieldKind::kBytes, {1, 2, 40});
  for (uint32_t width : {1U, 2U, 4U}) {
    Field flags = field(FieldKind::kFlags, width);
    flags.values = kBits;
    expect_back(flags, random);
    for (uint8_t decimals = 0; decimals <= 9; ++decimals) {
      Field number = field(FieldKind::kSigned, width);
      number.decimals = decimals;
      number.unit = "dBm";
      expect_back(number, random);
    }
  }
  for (std::span<const Field> inner : {std::span<const Field>(kInner), {kTitled}}) {
    Field records = field(FieldKind::kRecords, Field::kToTheEnd);
    records.record = inner;
    records.record_size = inner.back().offset + inner.back().width;
    for (int i = 0; i < 20; ++i) expect_back(records, random);
  }
}

TEST(FieldForms, ADumpCanBeGivenBack) {
  Bytes bytes(40);
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * 7);
  EXPECT_EQ(olt::cli::parse_hex(olt::hex_dump(bytes)), bytes);
}

TEST(FieldForms, TakeTheirOwnExamples) {
  struct {
    FieldKind kind;
    uint32_t width;
  } const kinds[] = {{FieldKind::kText, 32},  {FieldKind::kPadded, 32}, {FieldKind::kNumber, 4},
                     {FieldKind::kSigned, 2}, {FieldKind::kNumbers, 8}, {FieldKind::kMac, 6},
                     {FieldKind::kOnt, 88}};
  for (const auto &one : kinds) {
    Field taken = field(one.kind, one.width);
    EXPECT_EQ(form_of(one.kind).parse(taken, form_of(one.kind).example(taken)).size(), one.width);
  }
}

}  // namespace

}  // namespace olt::test
