#include "cli/text/field_forms.h"

#include <gtest/gtest.h>

#include <string>

namespace olt::test {

namespace {

using olt::Bytes;
using olt::catalog::Field;
using olt::catalog::FieldKind;
using olt::cli::BadValue;
using olt::cli::form_of;
using olt::cli::Value;

Field field(FieldKind kind, uint32_t width) {
  return {.name = "field", .offset = 0, .width = width, .kind = kind};
}

std::string hex(const Field &field, const std::string &text) {
  return olt::to_hex(form_of(field.kind).parse(field, text));
}

std::string error_of(const Field &field, const std::string &text) {
  try {
    form_of(field.kind).parse(field, text);
  } catch (const BadValue &bad) {
    return bad.what();
  }
  return "no error";
}

TEST(FieldForms, ReadEachKind) {
  EXPECT_EQ(hex(field(FieldKind::kText, 4), "abc"), "61626300");
  EXPECT_EQ(hex(field(FieldKind::kPadded, 4), "abcd"), "61626364");
  EXPECT_EQ(hex(field(FieldKind::kWord, 4), "0x01020304"), "04030201");
  EXPECT_EQ(hex(field(FieldKind::kHalfWord, 2), "258"), "0201");
  EXPECT_EQ(hex(field(FieldKind::kWords, 12), "1,2"), "010000000200000000000000");
  EXPECT_EQ(hex(field(FieldKind::kMac, 6), "02:00:00:00:00:0A"), "02000000000a");
  EXPECT_EQ(hex(field(FieldKind::kOnt, 12), "1/2/3"), "010000000200000003000000");
  EXPECT_EQ(hex(field(FieldKind::kOnt, 20), "1/2/3:4"), "0100000002000000030000000100000004000000");
  EXPECT_EQ(hex(field(FieldKind::kBytes, 2), "0a 0b"), "0a0b");
}

TEST(FieldForms, SayWhatIsWrong) {
  EXPECT_EQ(error_of(field(FieldKind::kText, 4), "abcd"), "4 bytes given");
  EXPECT_EQ(error_of(field(FieldKind::kPadded, 4), "abcde"), "5 bytes given");
  EXPECT_EQ(error_of(field(FieldKind::kWord, 4), "-1"), "'-1' given");
  EXPECT_EQ(error_of(field(FieldKind::kHalfWord, 2), "65536"), "'65536' given");
  EXPECT_EQ(error_of(field(FieldKind::kWords, 4), "1,2"), "2 numbers given");
  EXPECT_EQ(error_of(field(FieldKind::kMac, 6), "020000000001"),
            "'020000000001' is not a MAC address");
  EXPECT_EQ(error_of(field(FieldKind::kOnt, 12), "1/2/3:4"), "a UNI port is not taken here");
  EXPECT_EQ(error_of(field(FieldKind::kOnt, 88), "1/2"), "'1/2' given");
  EXPECT_EQ(error_of(field(FieldKind::kBytes, 2), "0a"), "1 byte given");
  EXPECT_EQ(error_of(field(FieldKind::kBytes, 1), "x"), "'x' is not pairs of hex digits");
}

TEST(FieldForms, HoldWhatTheBytesMean) {
  const Bytes bytes = {0x02, 0x01, 0x00, 0x00, 0x05, 0x00, 0x00, 0x00};
  olt::ByteView all = bytes;
  EXPECT_EQ(form_of(FieldKind::kWord).value(all.first(4)), Value(258U));
  EXPECT_EQ(form_of(FieldKind::kHalfWord).value(all.first(2)), Value(258U));
  EXPECT_EQ(form_of(FieldKind::kWords).value(all), Value(std::vector<uint32_t>{258, 5}));
  EXPECT_EQ(form_of(FieldKind::kMac).value(all.first(6)), Value(std::string("02:01:00:00:05:00")));
  EXPECT_EQ(form_of(FieldKind::kBytes).value(all.first(2)), Value(Bytes{0x02, 0x01}));
  EXPECT_EQ(form_of(FieldKind::kText).value(all.first(4)), Value(std::string("\x02\x01")));
  EXPECT_EQ(form_of(FieldKind::kPadded).value(all.first(2)), Value(std::string("\x02\x01")));
}

TEST(FieldForms, TakeTheirOwnExamples) {
  struct {
    FieldKind kind;
    uint32_t width;
  } const kinds[] = {{FieldKind::kText, 32},    {FieldKind::kPadded, 32}, {FieldKind::kWord, 4},
                     {FieldKind::kHalfWord, 2}, {FieldKind::kWords, 8},   {FieldKind::kMac, 6},
                     {FieldKind::kOnt, 88}};
  for (const auto &one : kinds) {
    Field taken = field(one.kind, one.width);
    EXPECT_EQ(form_of(one.kind).parse(taken, form_of(one.kind).example(taken)).size(), one.width);
  }
}

}  // namespace

}  // namespace olt::test
