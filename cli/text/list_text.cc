#include "cli/text/list_text.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "cli/text/error.h"
#include "cli/text/field_forms.h"
#include "cli/text/secret.h"
#include "cli/text/words.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;

namespace {

constexpr uint16_t kLastVlan = 4094;

uint16_t vlan_id(std::string_view text) {
  uint16_t id = 0;
  const char *end = text.data() + text.size();
  auto [stop, error] = std::from_chars(text.data(), end, id);
  if (error != std::errc{} || stop != end || id < 1 || id > kLastVlan) {
    throw BadValue("'{}' is not a VLAN id", printable(text));
  }
  return id;
}

/// A single id has no second one.
olt_vlan_node vlan_range(std::string_view text) {
  olt_vlan_node node{};
  size_t dash = text.find('-');
  if (text.empty()) throw BadValue("nothing is given");
  if (dash == 0 || dash == text.size() - 1) {
    throw BadValue("'{}' is a range with one end", printable(text));
  }
  node.vlan_first = vlan_id(text.substr(0, dash));
  if (dash == std::string_view::npos) return node;
  node.vlan_second = vlan_id(text.substr(dash + 1));
  if (node.vlan_second < node.vlan_first) {
    throw BadValue("'{}' ends before it begins", printable(text));
  }
  return node;
}

olt_vlan_node vlan(std::string_view text, size_t longest_description) {
  size_t colon = text.find(':');
  olt_vlan_node node = vlan_range(text.substr(0, colon));
  if (colon == std::string_view::npos) return node;
  text.remove_prefix(colon + 1);
  if (longest_description == 0) throw BadValue("a description is not taken here");
  if (text.size() > longest_description) {
    throw BadValue("the description has {} bytes", text.size());
  }
  std::copy(text.begin(), text.end(), node.vlan_descr);
  return node;
}

const Field &field_named(const Argument &argument, std::string_view name) {
  for (const Field &field : argument.fields) {
    if (field.name == name) return field;
  }
  throw BadValue("there is no field '{}'", printable(name));
}

Bytes field_bytes(const Field &field, std::string_view value) {
  try {
    return parse_field(field, value);
  } catch (const BadValue &bad) {
    throw BadValue("{}: {}", field.name, bad.what());
  }
}

std::vector<std::string> words_of(std::string_view text) {
  try {
    return split_words(text);
  } catch (const Error &error) {
    throw BadValue("{}", error.what());
  }
}

Bytes entry_by_field(std::string_view text, const Argument &argument) {
  Bytes entry(argument.size);
  std::vector<const Field *> seen;
  for (const std::string &word : words_of(text)) {
    size_t equals = word.find('=');
    // The word may be a part of a password and is not shown.
    if (equals == std::string::npos) throw BadValue("a word is not FIELD=VALUE");
    const Field &field = field_named(argument, std::string_view(word).substr(0, equals));
    if (std::find(seen.begin(), seen.end(), &field) != seen.end()) {
      throw BadValue("{} is given twice", field.name);
    }
    seen.push_back(&field);
    std::string value = word.substr(equals + 1);
    if (field.secret && value == "-") value = read_secret(field.name);
    Bytes bytes = field_bytes(field, value);
    std::copy(bytes.begin(), bytes.end(),
              entry.begin() + static_cast<std::ptrdiff_t>(field.offset));
  }
  return entry;
}

Bytes entry(std::string_view text, const Argument &argument) {
  if (text.find('=') != std::string_view::npos) return entry_by_field(text, argument);
  // The text may be a password and is not shown.
  std::optional<Bytes> bytes = from_hex(text);
  if (!bytes) throw BadValue("neither FIELD=VALUE nor pairs of hex digits");
  return of_size(argument.size, *bytes);
}

/// Reads each item; what is wrong with one gets its place in front.
template <typename Read>
void each(std::span<const Item> items, Read read) {
  for (const Item &item : items) {
    try {
      read(item.text);
    } catch (const BadValue &bad) {
      throw BadValue("{}: {}", item.place, bad.what());
    }
  }
}

}  // namespace

std::vector<olt_vlan_node> read_vlans(std::span<const Item> items, size_t longest_description) {
  std::vector<olt_vlan_node> nodes;
  each(items, [&](std::string_view text) { nodes.push_back(vlan(text, longest_description)); });
  return nodes;
}

std::vector<uint16_t> read_vlan_ids(std::span<const Item> items) {
  std::vector<uint16_t> ids;
  for (const olt_vlan_node &range : read_vlans(items, 0)) {
    ids.push_back(range.vlan_first);
    while (ids.back() < range.vlan_second) ids.push_back(static_cast<uint16_t>(ids.back() + 1));
  }
  return ids;
}

Bytes read_entries(std::span<const Item> items, const Argument &argument) {
  Bytes bytes;
  each(items, [&](std::string_view text) {
    Bytes one = entry(text, argument);
    bytes.insert(bytes.end(), one.begin(), one.end());
  });
  return bytes;
}

}  // namespace olt::cli
