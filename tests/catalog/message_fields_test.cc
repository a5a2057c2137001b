#include "catalog/message_fields.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "catalog/catalog.h"
#include "catalog/layout.h"

namespace olt::test {

namespace {

using olt::catalog::Argument;
using olt::catalog::families;
using olt::catalog::Family;
using olt::catalog::Field;
using olt::catalog::FieldKind;
using olt::catalog::fields_of;
using olt::catalog::Message;
using olt::catalog::MessageField;
using olt::catalog::Operation;
using olt::catalog::Part;

template <typename Function>
void each_operation(Function fn) {
  for (const Family &family : families()) {
    for (const Operation &operation : family.operations) fn(operation);
  }
}

/// Where the fields end; fails when they leave a gap or overlap.
size_t end_of(const std::vector<Field> &fields) {
  size_t end = 0;
  for (size_t i = 0; i < fields.size(); ++i) {
    EXPECT_EQ(fields[i].offset, end) << fields[i].name;
    EXPECT_TRUE(fields[i].width != 0 || i + 1 == fields.size()) << fields[i].name;
    end += fields[i].width;
  }
  return end;
}

void expect_each_byte_once(const Operation &operation, const Message &message) {
  std::vector<Field> fields;
  std::set<std::pair<const Argument *, std::string>> names;
  for (const MessageField &placed : fields_of(operation, message)) {
    const Field &field = placed.field;
    fields.push_back(field);
    EXPECT_TRUE(names.emplace(placed.argument, field.name).second) << field.name << " twice";
    EXPECT_EQ(field.kind == FieldKind::kRecords, !field.record.empty()) << field.name;
    if (field.record.empty()) continue;
    EXPECT_EQ(end_of({field.record.begin(), field.record.end()}), field.record_size);
  }
  size_t end = end_of(fields);
  size_t end_of_parts = 0;
  for (const Part &part : message.parts()) {
    EXPECT_TRUE(part.width != 0 || fields.back().width == 0) << "no field reaches the end";
    end_of_parts = part.offset + part.width;
  }
  EXPECT_GE(end, end_of_parts);
}

TEST(MessageFields, CoverEachByteOfEachPartOnce) {
  size_t operations = 0;
  each_operation([&operations](const Operation &operation) {
    SCOPED_TRACE(operation.name);
    expect_each_byte_once(operation, operation.request);
    expect_each_byte_once(operation, operation.reply);
    ++operations;
  });
  EXPECT_EQ(operations, 182U);
}

TEST(MessageFields, BelongToTheArgumentOfTheirBytes) {
  each_operation([](const Operation &operation) {
    for (const Message *message : {&operation.request, &operation.reply}) {
      for (const MessageField &placed : fields_of(operation, *message)) {
        const Argument *owner = nullptr;
        for (const Part &part : message->parts()) {
          bool is_in = placed.field.offset >= part.offset &&
                       (part.width == 0 || placed.field.offset < part.offset + part.width);
          bool has_owner = is_in && part.origin == catalog::Origin::kArgument;
          if (has_owner) owner = &operation.arguments()[part.argument];
        }
        EXPECT_EQ(placed.argument, owner) << operation.name << ' ' << placed.field.name;
      }
    }
  });
}

TEST(MessageFields, HaveTheWidthOfTheirKindWithoutMeanings) {
  const std::map<FieldKind, uint32_t> least = {
      {FieldKind::kMac, 6}, {FieldKind::kInterface, 8}, {FieldKind::kOnt, 12}};
  size_t onts = 0;
  for (const auto &family : catalog::Layout::contract().families()) {
    for (const Operation &operation : family.operations) {
      for (const Message *message : {&operation.request, &operation.reply}) {
        for (const MessageField &placed : fields_of(operation, *message)) {
          const Field &field = placed.field;
          auto width = least.find(field.kind);
          bool is_wide_enough = width == least.end() || field.width >= width->second;
          EXPECT_TRUE(is_wide_enough) << operation.name << ' ' << field.name;
          bool is_number = field.kind == FieldKind::kNumber;
          EXPECT_LE(is_number ? field.width : 0, 4U) << operation.name << ' ' << field.name;
          if (field.kind == FieldKind::kOnt) ++onts;
        }
      }
    }
  }
  EXPECT_GE(onts, 1U);
}

TEST(MessageFields, EachRecordNameStandsForOneRecord) {
  std::map<std::string, const Argument *> records;
  each_operation([&records](const Operation &operation) {
    for (const Argument &argument : operation.arguments()) {
      EXPECT_TRUE(argument.fields.empty() || !argument.record_name.empty()) << operation.name;
      if (argument.record_name.empty()) continue;
      auto [found, is_new] = records.emplace(argument.record_name, &argument);
      EXPECT_EQ(found->second->size, argument.size) << argument.record_name;
      EXPECT_EQ(found->second->fields.data(), argument.fields.data()) << argument.record_name;
    }
  });
  EXPECT_TRUE(records.contains("olt_user"));
  EXPECT_TRUE(records.contains("olt_voip_user"));
  EXPECT_TRUE(records.contains("wan_info"));
}

}  // namespace

}  // namespace olt::test
