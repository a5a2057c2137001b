#include "cli/walk/walk.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "catalog/layout.h"
#include "cli/call/result_text.h"
#include "cli/text/error.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::FieldKind;
using catalog::Layout;
using catalog::Role;

namespace {

bool is_target(const Argument &argument) {
  return argument.form == FieldKind::kOnt;
}

/// What a layout says of walks, if it does.
template <typename Value>
Value said(const Layout &layout, const std::optional<Value> &value, const char *member,
           const char *meaning) {
  if (value) return *value;
  wrong_usage("walk: the layout {} does not say {}; expected '{}' in it, or the layout box",
              layout.name(), meaning, member);
}

/// Whether a column says something about the row, and nothing that its index says already.
bool is_column(const Argument &argument, const Field &field, const std::vector<Field> &before) {
  if (field.role == Role::kRowName && is_target(argument)) return false;
  return std::none_of(before.begin(), before.end(), [&field](const Field &column) {
    return std::string_view(column.name) == field.name;
  });
}

}  // namespace

Walk::Walk(Access &box, const Layout &layout, const std::string &reader, const Detail &detail)
    : box_(box),
      layout_(layout),
      reader_(reader_named(reader)),
      detail_(detail),
      selection_(said(layout, layout.row_selection(), "row_selection", "how rows are selected")),
      end_of_table_(
          said(layout, layout.end_of_table(), "end_of_table", "which status ends a table")),
      step_(*layout.find(reader_.stepper)) {
  box.open();
}

std::optional<NamedValues> Walk::next() {
  if (!step()) return std::nullopt;
  NamedValues row = index();
  if (std::string_view(reader_.name) == reader_.stepper) {
    add_columns(row, step_);
    return row;
  }
  Call read(*layout_.find(reader_.name));
  read.set_bytes(0, 0, step_.bytes(0));
  select(read, selection_.this_row);
  check(read, read.make());
  add_columns(row, read);
  return row;
}

/// Says in the call's first argument which row it reads.
void Walk::select(Call &call, uint32_t row) const {
  bool is_of_target = is_target(call.operation().arguments()[0]);
  size_t offset = is_of_target ? selection_.target_offset : selection_.record_offset;
  call.set_bytes(0, offset, {reinterpret_cast<const uint8_t *>(&row), sizeof row});
}

/// @return whether there is a row after the last one.
bool Walk::step() {
  select(step_, selection_.next_row);
  ByteView named = step_.bytes(0);
  Bytes before(named.begin(), named.end());
  int32_t result = step_.make();
  if (result == end_of_table_) return false;
  check(step_, result);
  if (std::equal(before.begin(), before.end(), named.begin())) {
    fail("walk: {} returns the same row again; expected the next one", reader_.stepper);
  }
  return true;
}

void Walk::check(const Call &call, int32_t result) const {
  if (result == 0) return;
  int32_t reason = call.reason(result);
  fail("{} failed: {}{}", call.operation().name,
       describe_result(call.operation(), result, reason, layout_), box_.advice(reason));
}

/// The part of an ONU is called what it is in this table.
std::vector<Field> Walk::index_fields() const {
  std::vector<Field> fields;
  if (!is_target(step_.operation().arguments()[0])) return fields;
  for (Field field : layout_.target_fields()) {
    if (field.role != Role::kRowName) continue;
    if (std::string_view(field.name) == "part") {
      if (reader_.part == nullptr) continue;
      field.name = reader_.part;
    }
    fields.push_back(detail_.raw ? without_meaning(field) : field);
  }
  return fields;
}

std::vector<Field> Walk::columns() const {
  std::vector<Field> columns = index_fields();
  for (const Argument &argument : layout_.find(reader_.name)->arguments()) {
    if (!argument.is_output()) continue;
    for (Field &field : shown_fields(argument, detail_)) {
      if (is_column(argument, field, columns)) columns.push_back(field);
    }
  }
  return columns;
}

NamedValues Walk::index() const {
  NamedValues index;
  for (const Field &field : index_fields()) {
    ByteView bytes = step_.bytes(0).subspan(field.offset, field.width);
    index.push_back({field, {bytes.begin(), bytes.end()}});
  }
  return index;
}

void Walk::add_columns(NamedValues &row, const Call &call) const {
  std::vector<Field> before;
  for (const NamedValue &column : row) before.push_back(column.field);
  for (size_t place = 0; place < call.operation().argument_count; ++place) {
    const Argument &argument = call.operation().arguments()[place];
    ByteView bytes = call.bytes(place);
    if (!argument.is_output() || bytes.empty()) continue;
    for (NamedValue &value : values_of(argument, bytes, detail_)) {
      if (!is_column(argument, value.field, before)) continue;
      before.push_back(value.field);
      row.push_back(std::move(value));
    }
  }
}

}  // namespace olt::cli
