#include "cli/walk/walk.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "box/wire/records.h"
#include "box/wire/status.h"
#include "catalog/catalog.h"
#include "cli/call/result_text.h"
#include "cli/text/error.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::FieldKind;
using catalog::Operation;
using catalog::Role;

namespace {

constexpr auto kNoMoreRows = static_cast<int32_t>(box::Status::kNotFound);
/// Where a record of a table without targets says which row is wanted.
constexpr size_t kSelectorAt = offsetof(box::VlanRow, selector);

bool is_target(const Argument &argument) {
  return argument.form == FieldKind::kOnt;
}

/// Says in the call's first argument which row it reads.
void select(Call &call, box::RowSelector selector) {
  size_t offset = is_target(call.operation().arguments()[0]) ? offsetof(box::OntTarget, target_kind)
                                                             : kSelectorAt;
  call.set_bytes(0, offset, {reinterpret_cast<const uint8_t *>(&selector), sizeof selector});
}

/// Whether a column says something about the row, and nothing that its index says already.
bool is_column(const Argument &argument, const NamedValue &value, const NamedValues &row) {
  if (value.field.role == Role::kRowName && is_target(argument)) return false;
  return std::none_of(row.begin(), row.end(),
                      [&value](const NamedValue &column) { return column.name() == value.name(); });
}

}  // namespace

Walk::Walk(Access &box, const std::string &reader, const Detail &detail)
    : box_(box),
      reader_(reader_named(reader)),
      detail_(detail),
      step_(*catalog::find(reader_.stepper)) {
  box.open();
}

std::optional<NamedValues> Walk::next() {
  if (!step()) return std::nullopt;
  NamedValues row = index();
  if (std::string_view(reader_.name) == reader_.stepper) {
    add_columns(row, step_);
    return row;
  }
  Call read(*catalog::find(reader_.name));
  read.set_bytes(0, 0, step_.bytes(0));
  select(read, box::kThisRow);
  check(read.operation(), read.make());
  add_columns(row, read);
  return row;
}

/// @return whether there is a row after the last one.
bool Walk::step() {
  select(step_, box::kNextRow);
  ByteView named = step_.bytes(0);
  Bytes before(named.begin(), named.end());
  int32_t result = step_.make();
  if (result == kNoMoreRows) return false;
  check(step_.operation(), result);
  if (std::equal(before.begin(), before.end(), named.begin())) {
    fail("walk: {} returns the same row again; expected the next one", reader_.stepper);
  }
  return true;
}

void Walk::check(const Operation &operation, int32_t result) const {
  if (result == 0) return;
  fail("{} failed: {}{}", operation.name, describe_result(operation, result), box_.advice(result));
}

NamedValues Walk::index() const {
  if (!is_target(step_.operation().arguments()[0])) return {};
  ByteView target = step_.bytes(0);
  NamedValues index;
  auto add = [&](const char *name, uint32_t offset) {
    ByteView word = target.subspan(offset, sizeof(uint32_t));
    Field field = {.name = name,
                   .offset = offset,
                   .width = sizeof(uint32_t),
                   .kind = FieldKind::kNumber,
                   .role = Role::kRowName};
    index.push_back({field, {word.begin(), word.end()}});
  };
  add("slot", offsetof(box::OntTarget, slot));
  add("interface", offsetof(box::OntTarget, interface));
  add("onu", offsetof(box::OntTarget, onu));
  if (reader_.part != nullptr) add(reader_.part, offsetof(box::OntTarget, part));
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
