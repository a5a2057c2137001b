#include "cli/output/result.h"

#include <utility>

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::FieldKind;

namespace {

constexpr const char *kMask = "********";

NamedValue value_of(Field field, ByteView record, const Detail &detail) {
  if (field.width == Field::kToTheEnd) {
    field.width = static_cast<uint32_t>(record.size() - field.offset);
  }
  field.brief = !detail.all;
  ByteView bytes = record.subspan(field.offset, field.width);
  return {detail.raw ? without_meaning(field) : field,
          {bytes.begin(), bytes.end()},
          field.secret && !detail.secrets};
}

bool is_shown(const Field &field, const Detail &detail) {
  return detail.all || field.has_content();
}

/// A block shorter than its head is shown as it is.
bool has_fields(const Argument &argument, ByteView bytes) {
  return !argument.fields.empty() && bytes.size() >= argument.size;
}

Output output_of(const Call &call, size_t place, const Detail &detail) {
  const Argument &argument = call.operation().arguments()[place];
  ByteView bytes = call.bytes(place);
  if (const std::string &file = call.file(place); !file.empty()) {
    return {argument.name, WrittenFile{file, bytes.size()}};
  }
  NamedValues values = values_of(argument, bytes, detail);
  if (!has_fields(argument, bytes)) return {argument.name, std::move(values.front())};
  return {argument.name, std::move(values)};
}

/// Without what follows a text.
std::string unmasked(const NamedValue &value) {
  return form_of(value.field.kind).text(value.field, value.bytes);
}

}  // namespace

std::string NamedValue::text() const {
  return is_masked ? kMask : unmasked(*this);
}

nlohmann::ordered_json NamedValue::json() const {
  return is_masked ? kMask : form_of(field.kind).json(field, bytes);
}

Result result_of(const Call &call, int32_t code, const Detail &detail) {
  Result result{call.operation(), code, call.reason(code), {}, {}, {}};
  if (result.failed()) return result;
  for (size_t place = 0; place < call.operation().argument_count; ++place) {
    const Argument &argument = call.operation().arguments()[place];
    if (!argument.is_output()) continue;
    result.outputs.push_back(output_of(call, place, detail));
    if (argument.form == FieldKind::kListing) {
      result.listing = Listing{text_in(call.bytes(place)), {}};
    }
  }
  return result;
}

Changes changes_of(const Call &call, size_t place, ByteView before, const Detail &detail) {
  const Argument &argument = call.operation().arguments()[place];
  NamedValues old_values = values_of(argument, before, detail);
  NamedValues new_values = values_of(argument, call.bytes(place), detail);
  Changes changes;
  for (size_t i = 0; i < old_values.size(); ++i) {
    if (unmasked(old_values[i]) == unmasked(new_values[i])) continue;
    changes.push_back({std::move(old_values[i]), std::move(new_values[i])});
  }
  return changes;
}

std::vector<Field> shown_fields(const Argument &argument, const Detail &detail) {
  std::vector<Field> fields;
  for (const Field &field : argument.fields) {
    if (is_shown(field, detail)) fields.push_back(field);
  }
  if (argument.fields.empty()) fields.push_back(argument.whole());
  for (Field &field : fields) {
    if (detail.raw) field = without_meaning(field);
  }
  return fields;
}

NamedValues values_of(const Argument &argument, ByteView bytes, const Detail &detail) {
  if (!has_fields(argument, bytes)) {
    Field whole = argument.whole();
    whole.width = Field::kToTheEnd;
    return {value_of(whole, bytes, detail)};
  }
  NamedValues values;
  for (const Field &field : argument.fields) {
    if (is_shown(field, detail)) values.push_back(value_of(field, bytes, detail));
  }
  return values;
}

}  // namespace olt::cli
