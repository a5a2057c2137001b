#include "mock/message.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <set>
#include <utility>

#include "base/bad_input.h"
#include "catalog/catalog.h"
#include "cli/text/error.h"
#include "cli/text/field_forms.h"
#include "cli/text/items.h"
#include "cli/text/list_text.h"
#include "cli/text/words.h"

namespace olt::mock {

using catalog::Address;
using catalog::Argument;
using catalog::Field;
using catalog::FieldKind;
using catalog::Kind;
using catalog::Message;
using catalog::MessageField;
using catalog::Operation;
using catalog::Origin;
using catalog::Part;

namespace {

constexpr size_t kWord = sizeof(uint32_t);

template <typename... Args>
[[noreturn]] void refuse(const Operation &operation, fmt::format_string<Args...> line,
                         Args &&...args) {
  throw BadInput(
      fmt::format("{}: {}", operation.name, fmt::format(line, std::forward<Args>(args)...)));
}

bool is_text(FieldKind kind) {
  return kind == FieldKind::kText || kind == FieldKind::kPadded || kind == FieldKind::kListing;
}

/// The bytes of a field, fewer where the message ends before it does.
ByteView bytes_at(const Field &field, ByteView message) {
  size_t begin = std::min<size_t>(field.offset, message.size());
  size_t rest = message.size() - begin;
  return message.subspan(
      begin, field.width == Field::kToTheEnd ? rest : std::min<size_t>(field.width, rest));
}

/// A field with the name that it has in the message.
struct NamedField : MessageField {
  const char *message_name;
};

std::string qualified_name(const NamedField &placed) {
  if (placed.argument == nullptr) return placed.field.name;
  return fmt::format("{}.{}", placed.argument->name, placed.field.name);
}

/// A field that is an argument without fields of its own has the argument's name.
std::vector<NamedField> named_fields(const Operation &operation, const Message &message) {
  std::vector<NamedField> fields;
  for (const MessageField &placed : catalog::fields_of(operation, message)) {
    fields.push_back({placed, placed.field.name});
    if (placed.argument != nullptr && placed.argument->fields.empty()) {
      fields.back().field.name = placed.argument->name;
    }
  }
  return fields;
}

const Part *part_at(const Message &message, uint32_t offset) {
  for (const Part &part : message.parts()) {
    bool begins = offset >= part.offset;
    if (begins && (part.reaches_the_end() || offset < part.offset + uint32_t{part.width})) {
      return &part;
    }
  }
  return nullptr;
}

bool is_named_by_caller(const Operation &operation) {
  return operation.address.module == Address::kNamedByCaller;
}

std::string text_of(const Field &field, ByteView bytes) {
  if (field.width != Field::kToTheEnd && bytes.size() < field.width) return to_hex(bytes);
  return field.kind == FieldKind::kBytes ? to_hex(bytes)
                                         : cli::form_of(field.kind).text(field, bytes);
}

// Lists, as oltctl takes them: "10,20-25:users", "mac=... loid=...;mac=...".

Bytes vlan_records(const Argument &argument, std::string_view text) {
  Bytes records;
  for (const olt_vlan_node &node :
       cli::read_vlans(cli::split_items(text, ','), argument.described_bytes())) {
    Bytes record(argument.size);
    std::memcpy(record.data(), &node.vlan_first, sizeof node.vlan_first);
    std::memcpy(record.data() + sizeof node.vlan_first, &node.vlan_second, sizeof node.vlan_second);
    size_t head = sizeof node.vlan_first + sizeof node.vlan_second;
    std::copy_n(node.vlan_descr, argument.described_bytes(), record.begin() + ptrdiff_t(head));
    records.insert(records.end(), record.begin(), record.end());
  }
  return records;
}

std::string in_braces(std::string_view entries) {
  std::string text;
  for (const cli::Item &item : cli::split_items(entries, ';')) {
    text += fmt::format("{}{{{}}}", text.empty() ? "" : " ", item.text);
  }
  return text;
}

Bytes vlan_ids(std::string_view text) {
  std::vector<uint16_t> ids = cli::read_vlan_ids(cli::split_items(text, ','));
  const auto *bytes = reinterpret_cast<const uint8_t *>(ids.data());
  return {bytes, bytes + ids.size() * sizeof ids[0]};
}

/// "4:aabb,0x0b:01" on zeros.
Bytes patched(const Field &field, std::string_view text) {
  Bytes record(field.width);
  for (const cli::Item &item : cli::split_items(text, ',')) {
    size_t colon = std::min(item.text.find(':'), item.text.size() - 1);
    uint32_t offset = cli::parse_number(std::string_view(item.text).substr(0, colon), field.width);
    Bytes bytes = cli::parse_hex(std::string_view(item.text).substr(colon + 1));
    if (bytes.size() > record.size() - offset) {
      throw cli::BadValue("{} at offset {}", counted(bytes.size(), "byte"), offset);
    }
    std::copy(bytes.begin(), bytes.end(), record.begin() + ptrdiff_t(offset));
  }
  return record;
}

Bytes parse_list(const Field &field, const Argument &argument, std::string_view text) {
  if (text.starts_with('{') || text.starts_with('[') || text == "none") {
    return cli::parse_field(field, text);
  }
  if (argument.kind == Kind::kVlans) return vlan_records(argument, text);
  if (argument.kind == Kind::kIds) return vlan_ids(text);
  return cli::parse_field(field, text.find('=') == std::string_view::npos ? text : in_braces(text));
}

/// What parse_value() takes.
std::string expected_value(const Field &field, const Argument *argument) {
  std::string expected = cli::form_of(field.kind).expected(field);
  if (argument == nullptr || argument->kind != Kind::kVlans) return expected;
  return fmt::format("VLANs as {}, or {}",
                     argument->described_bytes() == 0 ? "10,20-25" : "10:uplink,20-25:users",
                     expected);
}

/// @param argument the one that the field is part of, or null
Bytes parse_value(const Field &field, const Argument *argument, std::string_view text) {
  if (argument != nullptr && argument->is_list()) return parse_list(field, *argument, text);
  const cli::FieldForm &form = cli::form_of(field.kind);
  bool is_hex = form.fits != nullptr && !form.fits(text) && field.width != Field::kToTheEnd;
  if (!is_hex) return cli::parse_field(field, text);
  if (text.find(':') != std::string_view::npos) return patched(field, text);
  return cli::of_size(field.width, cli::parse_hex(text));
}

/// Finds what a name in words stands for, and reads its value.
class WordReader {
 public:
  WordReader(const Operation &operation, Side side)
      : operation_(operation),
        is_request_(side == Side::kRequest),
        message_(message_of(operation, side)),
        fields_(named_fields(operation, message_)) {}

  Content read(std::string_view text) {
    for (const std::string &word : split(text)) {
      size_t equals = word.find('=');
      if (equals == std::string::npos || equals == 0) {
        refuse(operation_, "'{}' given; expected FIELD=VALUE", printable(word));
      }
      read_word(word.substr(0, equals), std::string_view(word).substr(equals + 1));
    }
    // Fields go on top of an argument that is given as a whole, wherever they stand.
    std::move(wholes_.begin(), wholes_.end(), std::back_inserter(content_.pieces));
    std::move(singles_.begin(), singles_.end(), std::back_inserter(content_.pieces));
    keep_last_of_each();
    return std::move(content_);
  }

 private:
  std::vector<std::string> split(std::string_view text) const {
    try {
      return cli::split_words(text);
    } catch (const cli::Error &error) {
      refuse(operation_, "{}", error.what());
    }
  }

  void read_word(const std::string &name, std::string_view value) {
    if (!names_.insert(name).second) refuse(operation_, "{} is given twice", name);
    if (is_request_ && is_named_by_caller(operation_) && name == operation_.arguments()[0].name) {
      content_.module = read_module(value);
      return;
    }
    if (const NamedField *placed = find_field(name)) {
      Bytes bytes = parse(placed->field, placed->argument, value);
      singles_.push_back({placed->field, std::move(bytes), is_text(placed->field.kind)});
    } else if (const Argument *argument = find_argument(name)) {
      read_whole(*argument, value);
    } else {
      refuse(operation_, "there is no field '{}'; expected {}", printable(name), all_names());
    }
  }

  uint32_t read_module(std::string_view value) const {
    Bytes bytes = parse(operation_.arguments()[0].whole(), nullptr, value);
    uint32_t module = 0;
    std::memcpy(&module, bytes.data(), sizeof module);
    return module;
  }

  Bytes parse(const Field &field, const Argument *argument, std::string_view value) const {
    try {
      return parse_value(field, argument, value);
    } catch (const cli::BadValue &bad) {
      refuse(operation_, "{}: {}; expected {}", field.name, bad.what(),
             expected_value(field, argument));
    } catch (const cli::Error &error) {
      refuse(operation_, "{}: {}", field.name, error.what());
    }
  }

  /// A field by its name or as ARGUMENT.FIELD. An argument's name stands for no other's field.
  const NamedField *find_field(const std::string &name) const {
    const Argument *owner = find_argument(name);
    const NamedField *found = nullptr;
    for (const NamedField &placed : fields_) {
      bool is_other = owner != nullptr && placed.argument != owner;
      bool is_called = name == placed.field.name || name == placed.message_name;
      if (name != qualified_name(placed) && (!is_called || is_other)) continue;
      if (found != nullptr) {
        refuse(operation_, "{} stands for two fields; expected {} or {}", name,
               qualified_name(*found), qualified_name(placed));
      }
      found = &placed;
    }
    return found;
  }

  /// An argument that has bytes in the message.
  const Argument *find_argument(const std::string &name) const {
    for (const Argument &argument : operation_.arguments()) {
      if (name != argument.name) continue;
      bool is_there = std::any_of(
          fields_.begin(), fields_.end(),
          [&argument](const NamedField &placed) { return placed.argument == &argument; });
      if (is_there) return &argument;
    }
    return nullptr;
  }

  void read_whole(const Argument &argument, std::string_view value) {
    Field whole = argument.whole();
    // Blocks and streams reach from their first byte to the end.
    if (argument.kind != Kind::kValue) whole.width = Field::kToTheEnd;
    Bytes bytes = parse(whole, &argument, value);
    for (const NamedField &placed : fields_) {
      if (placed.argument != &argument) continue;
      const Part *part = part_at(message_, placed.field.offset);
      if (part == nullptr) continue;
      Field source = placed.field;
      source.offset = part->from + placed.field.offset - part->offset;
      ByteView slice = bytes_at(source, bytes);
      Bytes padded(slice.begin(), slice.end());
      padded.resize(std::max<size_t>(padded.size(), source.width));
      wholes_.push_back({placed.field, std::move(padded), is_text(source.kind)});
    }
  }

  void keep_last_of_each() {
    std::vector<Piece> &pieces = content_.pieces;
    std::stable_sort(pieces.begin(), pieces.end(), [](const Piece &a, const Piece &b) {
      return a.field.offset < b.field.offset;
    });
    for (size_t i = pieces.size(); i > 1; --i) {
      if (pieces[i - 2].field.offset != pieces[i - 1].field.offset) continue;
      pieces.erase(pieces.begin() + ptrdiff_t(i - 2));
    }
  }

  std::string all_names() const {
    std::vector<std::string_view> names;
    if (is_request_ && is_named_by_caller(operation_)) {
      names.emplace_back(operation_.arguments()[0].name);
    }
    for (const NamedField &placed : fields_) {
      if (placed.field.role != catalog::Role::kReserved) names.emplace_back(placed.field.name);
    }
    return names.empty() ? "none" : fmt::format("{}", fmt::join(names, ", "));
  }

  const Operation &operation_;
  bool is_request_;
  const Message &message_;
  std::vector<NamedField> fields_;
  std::set<std::string> names_;
  std::vector<Piece> wholes_;
  std::vector<Piece> singles_;
  Content content_;
};

bool has_constants(const Operation &operation, ByteView request) {
  for (const Part &part : operation.request.parts()) {
    if (part.origin != Origin::kConstant) continue;
    if (part.offset + kWord > request.size()) return false;
    if (std::memcmp(request.data() + part.offset, &part.constant, kWord) != 0) return false;
  }
  return true;
}

bool asks(const Address &address, uint32_t module) {
  return address.module == Address::kNamedByCaller || address.module == module ||
         (address.second_module != Address::kNone && address.second_module == module);
}

bool differs(const Piece &piece, ByteView message) {
  ByteView sent = bytes_at(piece.field, message);
  if (sent.size() != piece.bytes.size()) return true;
  if (piece.up_to_zero) return text_in(sent) != text_in(piece.bytes);
  return !std::equal(sent.begin(), sent.end(), piece.bytes.begin());
}

/// The argument as one word, when that says all that it holds.
std::optional<std::string> whole_word(const Argument &argument, const Part &part,
                                      ByteView request) {
  Field whole = argument.whole();
  if (argument.kind != Kind::kValue || whole.kind == FieldKind::kBytes) return std::nullopt;
  if (part.from != 0 || part.width != whole.width) return std::nullopt;
  ByteView bytes = request.subspan(std::min<size_t>(part.offset, request.size()));
  if (bytes.size() < part.width) return std::nullopt;
  bytes = bytes.first(part.width);
  std::string text = text_of(whole, bytes);
  try {
    Bytes same = cli::parse_field(whole, text);
    if (!std::equal(bytes.begin(), bytes.end(), same.begin(), same.end())) return std::nullopt;
  } catch (const cli::BadValue &) {
    return std::nullopt;
  }
  return fmt::format("{}={}", argument.name, text);
}

bool is_zero(ByteView bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0; });
}

}  // namespace

const Operation *operation_of(uint32_t message_type, uint32_t module, ByteView request) {
  for (const catalog::Family &family : catalog::families()) {
    for (const Operation &operation : family.operations) {
      const Address &address = operation.address;
      if (address.sends() && address.message_type == message_type && asks(address, module) &&
          has_constants(operation, request)) {
        return &operation;
      }
    }
  }
  return nullptr;
}

const Message &message_of(const Operation &operation, Side side) {
  return side == Side::kRequest ? operation.request : operation.reply;
}

Content content_named(const Operation &operation, Side side, std::string_view words) {
  return WordReader(operation, side).read(words);
}

Content content_of_request(const Operation &operation, ByteView request) {
  Content content{.length = request.size()};
  for (const NamedField &placed : named_fields(operation, operation.request)) {
    const Part *part = part_at(operation.request, placed.field.offset);
    ByteView bytes = bytes_at(placed.field, request);
    bool is_any = part == nullptr || part->origin == Origin::kAny;
    if (is_any || (bytes.empty() && placed.field.width != Field::kToTheEnd)) continue;
    content.pieces.push_back({.field = placed.field,
                              .bytes = {bytes.begin(), bytes.end()},
                              .up_to_zero = part->is_text && part->rest == Origin::kAny});
  }
  return content;
}

Bytes reply_with(const Operation &operation, const Content &content) {
  size_t length = operation.reply.fixed_length();
  for (const MessageField &placed : catalog::fields_of(operation, operation.reply)) {
    length = std::max<size_t>(length, placed.field.offset + placed.field.width);
  }
  Bytes reply(length);
  for (const Piece &piece : content.pieces) {
    reply.resize(std::max(reply.size(), piece.field.offset + piece.bytes.size()));
    std::copy(piece.bytes.begin(), piece.bytes.end(),
              reply.begin() + ptrdiff_t(piece.field.offset));
  }
  for (const Argument &argument : operation.arguments()) {
    if (argument.kind != Kind::kHeadedBlock) continue;
    size_t at = argument.size - kWord;
    bool is_named = std::any_of(content.pieces.begin(), content.pieces.end(),
                                [at](const Piece &piece) { return piece.field.offset == at; });
    if (is_named) continue;
    auto rest = static_cast<uint32_t>(reply.size() - argument.size);
    std::memcpy(reply.data() + at, &rest, sizeof rest);
  }
  return reply;
}

std::vector<std::string> differences(const Content &expected, uint32_t module, ByteView request) {
  std::vector<std::string> lines;
  if (expected.module && *expected.module != module) {
    lines.push_back(fmt::format("module: {} sent; expected {}", module, *expected.module));
  }
  if (expected.length && *expected.length != request.size()) {
    lines.push_back(fmt::format("length: {} sent; expected {}", counted(request.size(), "byte"),
                                *expected.length));
  }
  for (const Piece &piece : expected.pieces) {
    if (!differs(piece, request)) continue;
    std::string sent = text_of(piece.field, bytes_at(piece.field, request));
    std::string wanted = text_of(piece.field, piece.bytes);
    if (sent == wanted) {
      sent = to_hex(bytes_at(piece.field, request));
      wanted = to_hex(piece.bytes);
    }
    lines.push_back(fmt::format("{}: {} sent; expected {}", piece.field.name,
                                sent.empty() ? "nothing" : sent, wanted));
  }
  return lines;
}

std::string words_of(const Operation &operation, uint32_t module, ByteView request) {
  std::vector<std::string> words;
  if (is_named_by_caller(operation)) {
    words.push_back(fmt::format("{}={}", operation.arguments()[0].name, module));
  }
  const Argument *shown = nullptr;
  for (const NamedField &placed : named_fields(operation, operation.request)) {
    const Part *part = part_at(operation.request, placed.field.offset);
    if (placed.argument == nullptr || placed.argument == shown || part == nullptr) continue;
    if (std::optional<std::string> word = whole_word(*placed.argument, *part, request)) {
      words.push_back(std::move(*word));
      shown = placed.argument;
      continue;
    }
    ByteView bytes = bytes_at(placed.field, request);
    if (placed.field.role == catalog::Role::kReserved && is_zero(bytes)) continue;
    words.push_back(fmt::format("{}={}", placed.field.name, text_of(placed.field, bytes)));
  }
  return words.empty() ? "" : ' ' + cli::join_words(words);
}

}  // namespace olt::mock
