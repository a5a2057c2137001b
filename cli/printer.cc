#include "cli/printer.h"

#include <fmt/format.h>

#include <cstring>

#include "cli/listing.h"
#include "cli/result_text.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::FieldKind;
using catalog::Kind;
using nlohmann::ordered_json;

namespace {

constexpr const char *kMask = "********";
constexpr size_t kShort = 16;

/// Walks the outputs: fn(place, argument).
template <typename Function>
void each_output(const Call &call, Function fn) {
  for (size_t place = 0; place < call.operation().argument_count; ++place) {
    const Argument &argument = call.operation().arguments()[place];
    if (argument.is_output()) fn(place, argument);
  }
}

uint32_t number_of(const Field &field, ByteView bytes) {
  if (field.kind == FieldKind::kWord) {
    uint32_t word = 0;
    std::memcpy(&word, bytes.data(), sizeof word);
    return word;
  }
  uint16_t half_word = 0;
  std::memcpy(&half_word, bytes.data(), sizeof half_word);
  return half_word;
}

std::string bytes_as_text(const char *name, ByteView bytes) {
  if (bytes.size() <= kShort) return fmt::format("{} = {}\n", name, spaced_hex(bytes));
  return fmt::format("{} = {} bytes\n{}", name, bytes.size(), hex_dump(bytes));
}

std::string field_as_text(const Field &field, ByteView bytes, bool secrets) {
  if (field.secret && !secrets) return fmt::format("{} = {}\n", field.name, kMask);
  switch (field.kind) {
    case FieldKind::kText:
      return fmt::format("{} = {}\n", field.name, printable(listing_name(bytes)));
    case FieldKind::kBytes:
      return bytes_as_text(field.name, bytes);
    case FieldKind::kWord:
    case FieldKind::kHalfWord:
      break;
  }
  return fmt::format("{} = {}\n", field.name, number_of(field, bytes));
}

ordered_json field_as_json(const Field &field, ByteView bytes, bool secrets) {
  if (field.secret && !secrets) return kMask;
  switch (field.kind) {
    case FieldKind::kText:
      return listing_name(bytes);
    case FieldKind::kBytes:
      return plain_hex(bytes);
    case FieldKind::kWord:
    case FieldKind::kHalfWord:
      break;
  }
  return number_of(field, bytes);
}

std::string output_as_text(const Shown &shown, size_t place, const Argument &argument) {
  if (argument.kind == Kind::kWord) {
    return fmt::format("{} = {}\n", argument.name, shown.call.word(place));
  }
  ByteView bytes = shown.call.bytes(place);
  if (argument.kind == Kind::kName) {
    return fmt::format("{} = {}\n", argument.name, printable(listing_name(bytes)));
  }
  if (argument.fields.empty()) return bytes_as_text(argument.name, bytes);
  std::string text;
  for (const Field &field : argument.fields) {
    text += field_as_text(field, bytes.subspan(field.offset, field.width), shown.secrets);
  }
  return text;
}

ordered_json output_as_json(const Shown &shown, size_t place, const Argument &argument) {
  if (argument.kind == Kind::kWord) return shown.call.word(place);
  ByteView bytes = shown.call.bytes(place);
  if (argument.kind == Kind::kName) return listing_name(bytes);
  if (argument.fields.empty()) return plain_hex(bytes);
  ordered_json fields = ordered_json::object();
  for (const Field &field : argument.fields) {
    fields[field.name] =
        field_as_json(field, bytes.subspan(field.offset, field.width), shown.secrets);
  }
  return fields;
}

ordered_json listing_as_json(const Shown &shown) {
  ordered_json listing;
  each_output(shown.call, [&](size_t place, const Argument &argument) {
    if (argument.kind != Kind::kName) return;
    listing["name"] = listing_name(shown.call.bytes(place));
    listing["text"] = shown.listing ? ordered_json(*shown.listing) : ordered_json();
  });
  return listing;
}

template <typename Value>
ordered_json or_null(const std::optional<Value> &value) {
  return value ? ordered_json(*value) : ordered_json();
}

}  // namespace

std::string as_text(const Shown &shown) {
  std::string text;
  each_output(shown.call, [&](size_t place, const Argument &argument) {
    text += output_as_text(shown, place, argument);
  });
  if (!shown.listing) return text;
  text += *shown.listing;
  if (!text.ends_with('\n')) text += '\n';
  return text;
}

ordered_json as_json(const Shown &shown) {
  ResultParts parts = take_apart(shown.result);
  ordered_json object = {
      {"version", kJsonVersion},
      {"operation", shown.call.operation().name},
      {"result", shown.result},
      {"failed", shown.result != 0},
      {"transport", or_null(parts.transport)},
      {"status", or_null(parts.status)},
      {"outputs", ordered_json::object()},
      {"listing", nullptr},
  };
  if (shown.result != 0) return object;
  each_output(shown.call, [&](size_t place, const Argument &argument) {
    object["outputs"][argument.name] = output_as_json(shown, place, argument);
  });
  object["listing"] = listing_as_json(shown);
  return object;
}

std::string json_line(const ordered_json &object) {
  return object.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

}  // namespace olt::cli
