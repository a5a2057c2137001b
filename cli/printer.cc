#include "cli/printer.h"

#include <fmt/format.h>

#include <cstring>
#include <vector>

#include "cli/listing_reader.h"
#include "cli/result_text.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::FieldKind;
using catalog::Form;
using catalog::Kind;
using nlohmann::ordered_json;

namespace {

constexpr const char *kMask = "********";
constexpr size_t kShort = 16;
constexpr size_t kShortWords = 32;

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
  if (bytes.size() <= kShort) return fmt::format("{} = {}\n", name, to_spaced_hex(bytes));
  return fmt::format("{} = {} bytes\n{}", name, bytes.size(), hex_dump(bytes));
}

std::vector<uint32_t> words_in(ByteView bytes) {
  std::vector<uint32_t> words(bytes.size() / sizeof(uint32_t));
  std::memcpy(words.data(), bytes.data(), words.size() * sizeof(uint32_t));
  return words;
}

std::string words_as_text(const char *name, ByteView bytes) {
  return fmt::format("{} = {}\n", name, fmt::join(words_in(bytes), ","));
}

std::string field_as_text(const Field &field, ByteView bytes, bool secrets) {
  if (field.secret && !secrets) return fmt::format("{} = {}\n", field.name, kMask);
  switch (field.kind) {
    case FieldKind::kText:
    case FieldKind::kPadded:
      return fmt::format("{} = {}\n", field.name, printable(listing_name(bytes)));
    case FieldKind::kWords:
      return words_as_text(field.name, bytes);
    case FieldKind::kMac:
    case FieldKind::kBytes:
      return bytes_as_text(field.name, bytes);
    case FieldKind::kWord:
    case FieldKind::kHalfWord:
      break;
  }
  return fmt::format("{} = {}\n", field.name, number_of(field, bytes));
}

ByteView bytes_of(const Field &field, ByteView record) {
  size_t width = field.width == Field::kToTheEnd ? record.size() - field.offset : field.width;
  return record.subspan(field.offset, width);
}

/// Whether the argument is shown field by field. Of a block all bytes are shown, as they are.
bool is_by_field(const Argument &argument) {
  return argument.kind == Kind::kRecord && !argument.fields.empty();
}

std::string output_as_text(const Shown &shown, size_t place, const Argument &argument) {
  if (argument.kind == Kind::kWord) {
    return fmt::format("{} = {}\n", argument.name, shown.call.word(place));
  }
  ByteView bytes = shown.call.bytes(place);
  if (argument.kind == Kind::kName || argument.kind == Kind::kText) {
    return fmt::format("{} = {}\n", argument.name, printable(listing_name(bytes)));
  }
  if (const std::string &file = shown.call.file(place); !file.empty()) {
    return fmt::format("{} = {} bytes in {}\n", argument.name, bytes.size(), printable(file));
  }
  if (is_by_field(argument)) {
    std::string text;
    for (const Field &field : argument.fields) {
      text += field_as_text(field, bytes_of(field, bytes), shown.secrets);
    }
    return text;
  }
  if (argument.form == Form::kWords && bytes.size() <= kShortWords) {
    return words_as_text(argument.name, bytes);
  }
  return bytes_as_text(argument.name, bytes);
}

ordered_json output_as_json(const Shown &shown, size_t place, const Argument &argument) {
  if (argument.kind == Kind::kWord) return shown.call.word(place);
  ByteView bytes = shown.call.bytes(place);
  if (argument.kind == Kind::kName || argument.kind == Kind::kText) return listing_name(bytes);
  if (const std::string &file = shown.call.file(place); !file.empty()) {
    return {{"file", file}, {"length", bytes.size()}};
  }
  if (is_by_field(argument)) {
    ordered_json fields = ordered_json::object();
    for (const Field &field : argument.fields) {
      fields[field.name] = field_as_json(field, bytes, shown.secrets);
    }
    return fields;
  }
  if (argument.form == Form::kWords) return words_in(bytes);
  return to_hex(bytes);
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
  if (const char *count = shown.call.operation().outcome.count) {
    text = fmt::format("{} = {}\n", count, shown.result);
  }
  each_output(shown.call, [&](size_t place, const Argument &argument) {
    text += output_as_text(shown, place, argument);
  });
  if (!shown.listing) return text;
  text += *shown.listing;
  if (!text.ends_with('\n')) text += '\n';
  return text;
}

ordered_json as_json(const Shown &shown) {
  const catalog::Operation &operation = shown.call.operation();
  bool failed = !operation.succeeded(shown.result);
  ResultParts parts;
  if (operation.address.sends()) parts = take_apart(shown.result);
  ordered_json object = {
      {"version", kJsonVersion},
      {"operation", operation.name},
      {"result", shown.result},
      {"failed", failed},
      {"transport", or_null(parts.transport)},
      {"status", or_null(parts.status)},
      {"outputs", ordered_json::object()},
      {"listing", nullptr},
  };
  if (failed) return object;
  each_output(shown.call, [&](size_t place, const Argument &argument) {
    object["outputs"][argument.name] = output_as_json(shown, place, argument);
  });
  object["listing"] = listing_as_json(shown);
  return object;
}

ordered_json field_as_json(const Field &field, ByteView record, bool secrets) {
  if (field.secret && !secrets) return kMask;
  ByteView bytes = bytes_of(field, record);
  switch (field.kind) {
    case FieldKind::kText:
    case FieldKind::kPadded:
      return listing_name(bytes);
    case FieldKind::kWords:
      return words_in(bytes);
    case FieldKind::kMac:
    case FieldKind::kBytes:
      return to_hex(bytes);
    case FieldKind::kWord:
    case FieldKind::kHalfWord:
      break;
  }
  return number_of(field, bytes);
}

std::string json_line(const ordered_json &object) {
  return object.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

}  // namespace olt::cli
