#include "cli/walk.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "base/table.h"
#include "base/text.h"
#include "box/wire/status.h"
#include "catalog/catalog.h"
#include "cli/error.h"
#include "cli/printer.h"
#include "cli/result_text.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::FieldKind;
using catalog::Form;
using catalog::Operation;

namespace {

// Where a target says which row, and a row record whether it is the next one.
constexpr size_t kTargetKindAt = 12;
constexpr size_t kTargetPartAt = 16;
constexpr size_t kSelectorAt = 0;
constexpr uint32_t kThisRow = 1;
constexpr uint32_t kNextRow = 2;
constexpr auto kNoMoreRows = static_cast<int32_t>(box::Status::kNotFound);

constexpr size_t kWidestCell = 48;

bool is_target(const Argument &argument) {
  return argument.form == Form::kOnt;
}

/// Which row a call is to read, as its first argument says it.
void select(Call &call, uint32_t selector) {
  size_t offset = is_target(call.operation().arguments()[0]) ? kTargetKindAt : kSelectorAt;
  call.set_bytes(0, offset, {reinterpret_cast<const uint8_t *>(&selector), sizeof selector});
}

uint32_t word_at(ByteView bytes, size_t offset) {
  uint32_t word = 0;
  std::memcpy(&word, bytes.data() + offset, sizeof word);
  return word;
}

/// Whether a field says something of the row, not of how it was asked for.
bool tells(const Argument &argument, std::string_view field) {
  if (field.starts_with("reserved") || field == "selector") return false;
  bool names_the_row = field.starts_with("target") || field.starts_with("mac");
  return !is_target(argument) || !names_the_row;
}

std::string cell(const Row &value) {
  std::string text;
  if (value.is_array()) {
    for (const Row &element : value) text += (text.empty() ? "" : ",") + element.dump();
  } else {
    text = value.is_string() ? printable(value.get<std::string>()) : value.dump();
  }
  if (text.size() > kWidestCell) text = text.substr(0, kWidestCell - 3) + "...";
  return text.empty() ? "-" : text;
}

}  // namespace

Walk::Walk(Access &box, const std::string &reader, bool secrets)
    : box_(box),
      reader_(reader_named(reader)),
      secrets_(secrets),
      step_(*catalog::find(reader_.stepper)) {
  box.open();
}

std::optional<Row> Walk::next() {
  if (!step()) return std::nullopt;
  Row row = Row::object();
  add_index(row);
  if (std::string_view(reader_.name) == reader_.stepper) {
    add_columns(row, step_);
    return row;
  }
  Call read(*catalog::find(reader_.name));
  read.set_bytes(0, 0, step_.bytes(0));
  select(read, kThisRow);
  check(read.operation(), read.make());
  add_columns(row, read);
  return row;
}

/// @return whether there is a row behind the last one.
bool Walk::step() {
  select(step_, kNextRow);
  ByteView named = step_.bytes(0);
  Bytes before(named.begin(), named.end());
  int32_t result = step_.make();
  if (result == kNoMoreRows) return false;
  check(step_.operation(), result);
  if (std::equal(before.begin(), before.end(), named.begin())) {
    fail("walk: {} gives the same row again; expected the one behind it", reader_.stepper);
  }
  return true;
}

void Walk::check(const Operation &operation, int32_t result) const {
  if (result == 0) return;
  fail("{} failed: {}{}", operation.name, describe_result(operation, result), box_.advice(result));
}

void Walk::add_index(Row &row) const {
  if (!is_target(step_.operation().arguments()[0])) return;
  ByteView target = step_.bytes(0);
  row["slot"] = word_at(target, 0);
  row["interface"] = word_at(target, 4);
  row["onu"] = word_at(target, 8);
  if (reader_.part != nullptr) row[reader_.part] = word_at(target, kTargetPartAt);
}

void Walk::add_columns(Row &row, const Call &call) const {
  for (size_t place = 0; place < call.operation().argument_count; ++place) {
    const Argument &argument = call.operation().arguments()[place];
    ByteView bytes = call.bytes(place);
    if (!argument.is_output() || bytes.empty()) continue;
    for (const Field &field : argument.fields) {
      bool is_new = tells(argument, field.name) && !row.contains(field.name);
      if (is_new) row[field.name] = field_as_json(field, bytes, secrets_);
    }
    if (!argument.fields.empty()) continue;
    FieldKind kind = argument.form == Form::kWords ? FieldKind::kWords : FieldKind::kBytes;
    row[argument.name] = field_as_json({argument.name, 0, Field::kToTheEnd, kind}, bytes, secrets_);
  }
}

std::string rows_text(const std::vector<Row> &rows) {
  if (rows.empty()) return "no rows\n";
  std::vector<TableRow> table(1);
  for (const auto &[name, value] : rows.front().items()) table[0].push_back(name);
  for (const Row &row : rows) {
    TableRow cells;
    for (const std::string &name : table[0]) cells.push_back(cell(row.value(name, Row(""))));
    table.push_back(std::move(cells));
  }
  return table_text(table);
}

std::string row_line(const std::string &reader, const Row &row) {
  return json_line({{"version", kJsonVersion}, {"reader", reader}, {"row", row}});
}

}  // namespace olt::cli
