#include "cli/output/result.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::FieldKind;

namespace {

constexpr const char *kMask = "********";

NamedValue value_of(const Field &field, ByteView record, bool secrets) {
  if (field.secret && !secrets) return {field.name, field.role, kMask};
  ByteView bytes = field.width == Field::kToTheEnd ? record.subspan(field.offset)
                                                   : record.subspan(field.offset, field.width);
  return {field.name, field.role, form_of(field.kind).value(bytes)};
}

/// A block shorter than its head is shown as it is.
bool has_fields(const Argument &argument, ByteView bytes) {
  return !argument.fields.empty() && bytes.size() >= argument.size;
}

Output output_of(const Call &call, size_t place, bool secrets) {
  const Argument &argument = call.operation().arguments()[place];
  ByteView bytes = call.bytes(place);
  if (const std::string &file = call.file(place); !file.empty()) {
    return {argument.name, WrittenFile{file, bytes.size()}};
  }
  NamedValues values = values_of(argument, bytes, secrets);
  if (!has_fields(argument, bytes)) return {argument.name, std::move(values.front().value)};
  return {argument.name, std::move(values)};
}

}  // namespace

Result result_of(const Call &call, int32_t code, bool secrets) {
  Result result{call.operation(), code, {}, {}};
  if (result.failed()) return result;
  for (size_t place = 0; place < call.operation().argument_count; ++place) {
    const Argument &argument = call.operation().arguments()[place];
    if (!argument.is_output()) continue;
    result.outputs.push_back(output_of(call, place, secrets));
    if (argument.form == FieldKind::kListing) {
      result.listing = Listing{text_in(call.bytes(place)), {}};
    }
  }
  return result;
}

NamedValues values_of(const Argument &argument, ByteView bytes, bool secrets) {
  if (!has_fields(argument, bytes)) {
    Field whole = argument.whole();
    whole.width = Field::kToTheEnd;
    return {value_of(whole, bytes, secrets)};
  }
  NamedValues values;
  for (const Field &field : argument.fields) values.push_back(value_of(field, bytes, secrets));
  return values;
}

}  // namespace olt::cli
