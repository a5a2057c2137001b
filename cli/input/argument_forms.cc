#include "cli/input/argument_forms.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <optional>
#include <system_error>
#include <vector>

#include "box/wire/records.h"
#include "cli/text/field_forms.h"
#include "cli/text/file.h"
#include "cli/text/list_text.h"
#include "platform/olthost.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::FieldKind;
using catalog::Kind;
using catalog::Role;

namespace {

constexpr uint32_t kLongestStream = OLT_REQUEST_LIMIT;
/// Slot, interface, ONU, kind of target and UNI port.
constexpr size_t kTargetWords = 5;

const Argument &argument_at(const Call &call, size_t place) {
  return call.operation().arguments()[place];
}

Bytes file(std::string_view path) {
  std::error_code error;
  std::string content = read_file(std::string(path), kLongestStream, error);
  if (error) throw BadValue("cannot read '{}': {}", printable(path), error.message());
  return {content.begin(), content.end()};
}

// Values.

std::string expected_value(const Argument &argument) {
  Field whole = argument.whole();
  const FieldForm &form = form_of(whole.kind);
  std::string expected = form.expected(whole);
  if (form.fits == nullptr) return expected;
  bool is_bytes = whole.kind == FieldKind::kBytes;
  return fmt::format("{}{}, @FILE or OFFSET:HEX[,OFFSET:HEX...]",
                     is_bytes ? "" : expected + ", or ",
                     form_of(FieldKind::kBytes).expected(whole));
}

std::string example_value(const Argument &argument) {
  return argument.secret ? "-" : form_of(argument.form).example(argument.whole());
}

std::string described_value(const Argument &argument) {
  if (!argument.fields.empty()) return "the record's fields";
  return form_of(argument.form).described(argument.whole());
}

/// "4:aabb,0x0b:01" on top of what is there.
void patch(Call &call, size_t place, std::string_view text) {
  size_t size = argument_at(call, place).size;
  while (!text.empty()) {
    std::string_view one = text.substr(0, text.find(','));
    text.remove_prefix(std::min(one.size() + 1, text.size()));
    size_t colon = one.find(':');
    if (colon == std::string_view::npos) throw BadValue("'{}' has no offset", printable(one));
    uint32_t offset = parse_number(one.substr(0, colon), UINT32_MAX);
    Bytes bytes = parse_hex(one.substr(colon + 1));
    if (offset > size || bytes.size() > size - offset) {
      throw BadValue("{} at offset {}: beyond the end of the record", counted(bytes.size(), "byte"),
                     offset);
    }
    call.set_bytes(place, offset, bytes);
  }
}

/// The bytes that a text in the form of its kind says; those that follow are left out.
Bytes said(const Field &whole, std::string_view text) {
  Bytes bytes = parse_field(whole, text);
  size_t count = bytes.size();
  if (whole.kind == FieldKind::kNumbers) {
    auto commas = static_cast<size_t>(std::count(text.begin(), text.end(), ','));
    count = (commas + 1) * sizeof(uint32_t);
  } else if (whole.kind == FieldKind::kOnt) {
    count = kTargetWords * sizeof(uint32_t);
  }
  bytes.resize(std::min(bytes.size(), count));
  return bytes;
}

/// Whether the text is a list or a text in JSON.
bool is_json(std::string_view text) {
  return text.starts_with('[') || text.starts_with('"');
}

void read_value(Call &call, size_t place, std::string_view text) {
  Field whole = argument_at(call, place).whole();
  const FieldForm &form = form_of(whole.kind);
  if (form.fits != nullptr && text.starts_with('@')) {
    call.set_bytes(place, 0, of_size(whole.width, file(text.substr(1))));
  } else if (form.fits == nullptr || is_json(text) || form.fits(text)) {
    call.set_bytes(place, 0, said(whole, text));
  } else if (text.find(':') == std::string_view::npos) {
    call.set_bytes(place, 0, of_size(whole.width, parse_hex(text)));
  } else {
    patch(call, place, text);
  }
}

// Bytes of any length.

std::string expected_stream(const Argument &argument) {
  std::vector<std::string_view> names;
  for (const Field &field : argument.fields) names.emplace_back(field.name);
  return fmt::format("bytes as HEX or @FILE{}{}", names.empty() ? "" : ": ",
                     fmt::join(names, ", "));
}

std::string example_stream(const Argument &argument) {
  return fmt::format("@{}.bin", argument.name);
}

void read_stream(Call &call, size_t place, std::string_view text) {
  call.set_stream(place, text.starts_with('@') ? file(text.substr(1)) : parse_hex(text));
}

std::string described_block(const Argument &argument) {
  return argument.fields.empty() ? "the reply's bytes" : "the reply's fields";
}

std::string expected_buffer(const Argument & /*argument*/) {
  return "@FILE, to write the bytes there";
}

std::string described_buffer(const Argument &argument) {
  return fmt::format("the bytes; {}=@FILE writes them to a file", argument.name);
}

void read_buffer(Call &call, size_t place, std::string_view text) {
  if (text.size() < 2 || text[0] != '@') throw BadValue("'{}' given", printable(text));
  call.set_file(place, std::string(text.substr(1)));
}

// Lists.

std::vector<Item> items(std::string_view text, char separator) {
  if (!text.starts_with('@')) return split_items(text, separator);
  Bytes content = file(text.substr(1));
  return split_lines({reinterpret_cast<const char *>(content.data()), content.size()});
}

/// Records as results and traces show them: objects in JSON, or fields in braces.
std::optional<Bytes> records_in(std::string_view text, const Argument &argument) {
  bool is_list = text.starts_with("[{") || text.starts_with('{');
  if (!is_list || argument.fields.empty()) return std::nullopt;
  return parse_field({.name = argument.name,
                      .offset = 0,
                      .width = Field::kToTheEnd,
                      .kind = FieldKind::kRecords,
                      .record_size = argument.size,
                      .record = argument.fields},
                     text);
}

/// Numbers in JSON as they are typed.
std::string_view without_brackets(std::string_view text) {
  bool is_list = text.starts_with('[') && text.ends_with(']');
  return is_list ? text.substr(1, text.size() - 2) : text;
}

/// A record as an item: "10-20:uplink".
Item vlan_item(ByteView record, size_t number) {
  box::DescribedVlan vlan{};
  std::memcpy(&vlan, record.data(), record.size());
  std::string text = fmt::to_string(vlan.first);
  if (vlan.last != 0) text += fmt::format("-{}", vlan.last);
  std::string description = text_in(as_bytes({vlan.description, sizeof vlan.description}));
  if (!description.empty()) text += fmt::format(":{}", description);
  return {fmt::format("item {}", number), text};
}

std::vector<Item> vlan_items(std::string_view text, const Argument &argument) {
  std::optional<Bytes> records = records_in(text, argument);
  if (!records) return items(without_brackets(text), ',');
  std::vector<Item> all;
  for (ByteView rest = *records; !rest.empty(); rest = rest.subspan(argument.size)) {
    all.push_back(vlan_item(rest.first(argument.size), all.size() + 1));
  }
  return all;
}

std::string example_vlans(const Argument &argument) {
  return argument.described_bytes() == 0 ? "10,20-25" : "10:uplink,20-25:users";
}

std::string expected_vlans(const Argument &argument) {
  uint32_t bytes = argument.described_bytes();
  std::string description =
      bytes == 0 ? "" : fmt::format(", each with a description of at most {} bytes", bytes);
  return fmt::format("VLANs from 1 to 4094 as {}{}, or @FILE with one a line",
                     example_vlans(argument), description);
}

void read_vlan_list(Call &call, size_t place, std::string_view text) {
  const Argument &argument = argument_at(call, place);
  call.set_vlans(place, read_vlans(vlan_items(text, argument), argument.described_bytes()));
}

void read_ids(Call &call, size_t place, std::string_view text) {
  std::vector<uint16_t> ids = read_vlan_ids(items(without_brackets(text), ','));
  const auto *bytes = reinterpret_cast<const uint8_t *>(ids.data());
  call.set_stream(place, {bytes, bytes + ids.size() * sizeof ids[0]});
}

std::string expected_entries(const Argument &argument) {
  if (argument.fields.empty()) {
    return fmt::format("entries of {} bytes as HEX, separated by ';', or @FILE with one a line",
                       argument.size);
  }
  std::vector<std::string> fields;
  for (const Field &field : argument.fields) {
    if (field.role == Role::kReserved) continue;
    fields.push_back(fmt::format("{} ({})", field.name, form_of(field.kind).expected(field)));
  }
  return fmt::format(
      "entries as FIELD=VALUE with the fields {}, or {} bytes as HEX, separated by ';', or @FILE"
      " with one a line",
      fmt::join(fields, ", "), argument.size);
}

std::string example_entries(const Argument &argument) {
  if (argument.fields.empty()) return to_hex(Bytes(argument.size, 1));
  const Field &first =
      *std::find_if(argument.fields.begin(), argument.fields.end(),
                    [](const Field &field) { return field.role != catalog::Role::kReserved; });
  return fmt::format("{}={}", first.name, form_of(first.kind).example(first));
}

void read_entry_list(Call &call, size_t place, std::string_view text) {
  const Argument &argument = argument_at(call, place);
  std::optional<Bytes> records = records_in(text, argument);
  call.set_stream(place, records ? *records : read_entries(items(text, ';'), argument));
}

constexpr ArgumentForm kForms[] = {
    {Kind::kValue, "value", expected_value, example_value, read_value, described_value},
    {Kind::kStream, "stream", expected_stream, example_stream, read_stream, nullptr},
    {Kind::kBlock, "block", nullptr, nullptr, nullptr, described_block},
    {Kind::kHeadedBlock, "headed-block", nullptr, nullptr, nullptr, described_block},
    {Kind::kReplyBlock, "reply-block", nullptr, nullptr, nullptr, described_block},
    {Kind::kBuffer, "buffer", expected_buffer, nullptr, read_buffer, described_buffer},
    {Kind::kVlans, "vlans", expected_vlans, example_vlans, read_vlan_list, nullptr},
    {Kind::kIds, "ids", expected_vlans, example_vlans, read_ids, nullptr},
    {Kind::kEntries, "entries", expected_entries, example_entries, read_entry_list, nullptr},
};

constexpr bool is_in_order() {
  for (size_t i = 0; i < std::size(kForms); ++i) {
    if (kForms[i].kind != static_cast<Kind>(i)) return false;
  }
  return true;
}
static_assert(is_in_order());

}  // namespace

const ArgumentForm &form_of(const Argument &argument) {
  return kForms[static_cast<size_t>(argument.kind)];
}

}  // namespace olt::cli
