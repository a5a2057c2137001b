#include "agent/value.h"

#include <gtest/gtest.h>

namespace olt::test {

namespace {

using agent::Column;
using agent::SmiType;
using agent::Value;
using catalog::Field;
using catalog::FieldKind;

Column column(SmiType type, FieldKind kind, uint32_t offset, uint32_t width) {
  return {.name = "x",
          .arc = 10,
          .type = type,
          .size = width,
          .field = {.name = "x", .offset = offset, .width = width, .kind = kind}};
}

const Bytes kRecord = {0x00, 0x01, 0x02, 0x03, 0xff, 0xff, 0xff, 0xff, 'a', 'b', 0, 'c'};

TEST(Value, OfNumbersIsLittleEndian) {
  EXPECT_EQ(value_of(column(SmiType::kUnsigned32, FieldKind::kNumber, 0, 4), kRecord).number,
            0x03020100);
  EXPECT_EQ(value_of(column(SmiType::kUnsigned32, FieldKind::kNumber, 1, 2), kRecord).number,
            0x0201);
  EXPECT_EQ(value_of(column(SmiType::kUnsigned32, FieldKind::kNumber, 4, 4), kRecord).number,
            4294967295);
  EXPECT_EQ(value_of(column(SmiType::kInteger32, FieldKind::kSigned, 4, 4), kRecord).number, -1);
}

TEST(Value, OfATextEndsAtItsZero) {
  EXPECT_EQ(value_of(column(SmiType::kText, FieldKind::kPadded, 8, 4), kRecord).octets,
            (Bytes{'a', 'b'}));
  EXPECT_EQ(value_of(column(SmiType::kText, FieldKind::kPadded, 8, 2), kRecord).octets,
            (Bytes{'a', 'b'}));
}

TEST(Value, OfPortsBeginsWithTheHighestBit) {
  // Ports 1, 2, 16 and 32.
  const Bytes record = {0x03, 0x80, 0x00, 0x80};
  EXPECT_EQ(value_of(column(SmiType::kPortList, FieldKind::kPorts, 0, 4), record).octets,
            (Bytes{0xc0, 0x01, 0x00, 0x01}));
}

TEST(Value, OfVlanIdsHasTheHighOctetFirstAndNoZeros) {
  const Bytes record = {0x0a, 0x00, 0x00, 0x00, 0xfe, 0x0f};
  EXPECT_EQ(value_of(column(SmiType::kVlanIds, FieldKind::kVlans, 0, 6), record).octets,
            (Bytes{0x00, 0x0a, 0x0f, 0xfe}));
}

TEST(Value, OfRecordsIsTheirNumber) {
  Column records = column(SmiType::kUnsigned32, FieldKind::kRecords, 4, Field::kToTheEnd);
  records.is_counted = true;
  records.field.record_size = 4;
  EXPECT_EQ(value_of(records, kRecord).number, 2);
  EXPECT_EQ(value_of(records, ByteView(kRecord).first(3)).number, 0);
}

TEST(Value, OutsideTheRecordIsZero) {
  EXPECT_EQ(value_of(column(SmiType::kUnsigned32, FieldKind::kNumber, 10, 4), kRecord).number,
            0x6300);
  EXPECT_EQ(value_of(column(SmiType::kUnsigned32, FieldKind::kNumber, 40, 4), kRecord).number, 0);
}

TEST(Value, BecomesTheBytesOfItsField) {
  EXPECT_EQ(bytes_of(column(SmiType::kUnsigned32, FieldKind::kNumber, 0, 4), {0x03020100}),
            (Bytes{0, 1, 2, 3}));
  EXPECT_EQ(bytes_of(column(SmiType::kText, FieldKind::kPadded, 0, 4), {0, {'a', 'b'}}),
            (Bytes{'a', 'b', 0, 0}));
  EXPECT_EQ(
      bytes_of(column(SmiType::kPortList, FieldKind::kPorts, 0, 4), {0, {0xc0, 0x01, 0x00, 0x01}}),
      (Bytes{0x03, 0x80, 0x00, 0x80}));
  EXPECT_EQ(bytes_of(column(SmiType::kInteger32, FieldKind::kSigned, 0, 4), {-2}),
            (Bytes{0xfe, 0xff, 0xff, 0xff}));
}

TEST(Value, ThatDoesNotFitIsNotTaken) {
  EXPECT_EQ(bytes_of(column(SmiType::kUnsigned32, FieldKind::kNumber, 0, 1), {256}), std::nullopt);
  EXPECT_EQ(bytes_of(column(SmiType::kUnsigned32, FieldKind::kNumber, 0, 4), {-1}), std::nullopt);
  EXPECT_EQ(bytes_of(column(SmiType::kText, FieldKind::kText, 0, 4), {0, {'a', 'b', 'c', 'd'}}),
            std::nullopt);
  EXPECT_EQ(bytes_of(column(SmiType::kText, FieldKind::kPadded, 0, 4), {0, {'a', 0}}),
            std::nullopt);
  EXPECT_EQ(bytes_of(column(SmiType::kOctets, FieldKind::kBytes, 0, 4), {0, {1, 2, 3}}),
            std::nullopt);
  Column named = column(SmiType::kEnumeration, FieldKind::kNumber, 0, 4);
  named.labels = {{0, "off"}, {1, "on"}};
  EXPECT_EQ(bytes_of(named, {2}), std::nullopt);
  EXPECT_EQ(bytes_of(named, {1}), (Bytes{1, 0, 0, 0}));
}

}  // namespace

}  // namespace olt::test
