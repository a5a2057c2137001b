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
using catalog::Operation;
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
bool is_column(const Argument &argument, const NamedValue &value, const NamedValues &row) {
  if (value.field.role == Role::kRowName && is_target(argument)) return false;
  return std::none_of(row.begin(), row.end(),
                      [&value](const NamedValue &column) { return column.name() == value.name(); });
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
NamedValues Walk::index() const {
  if (!is_target(step_.operation().arguments()[0])) return {};
  NamedValues index;
  for (Field field : layout_.target_fields()) {
    if (field.role != Role::kRowName) continue;
    if (std::string_view(field.name) == "part") {
      if (reader_.part == nullptr) continue;
      field.name = reader_.part;
    }
    ByteView bytes = step_.bytes(0).subspan(field.offset, field.width);
    index.push_back({detail_.raw ? without_meaning(field) : field, {bytes.begin(), bytes.end()}});
  }
  return index;
}

void Walk::add_columns(NamedValues &row, const Call &call) const {
  for (size_t place = 0; place < call.operation().argument_count; ++place) {
    const Argument &argument = call.operation().arguments()[place];
    ByteView bytes = call.bytes(place);
    if (!argument.is_output() || bytes.empty()) continue;
    for (NamedValue &value : values_of(argument, bytes, detail_)) {
      if (is_column(argument, value, row)) row.push_back(std::move(value));
    }
  }
}

}  // namespace olt::cli
