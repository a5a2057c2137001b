#include "cli/list_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>

#include "base/mac.h"
#include "base/text.h"
#include "cli/error.h"
#include "cli/secret.h"
#include "cli/words.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::FieldKind;

namespace {

constexpr uint16_t kLastVlan = 4094;

std::string_view trimmed(std::string_view text) {
  size_t begin = text.find_first_not_of(" \t\r");
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

uint16_t vlan_id(const Item &item, std::string_view text) {
  uint16_t id = 0;
  const char *end = text.data() + text.size();
  auto [stop, error] = std::from_chars(text.data(), end, id);
  if (error != std::errc{} || stop != end || id < 1 || id > kLastVlan) {
    throw BadItem(item, fmt::format("'{}' is no VLAN id", printable(text)));
  }
  return id;
}

/// A single id has no second one.
olt_vlan_node vlan_range(const Item &item, std::string_view text) {
  olt_vlan_node node{};
  size_t dash = text.find('-');
  if (text.empty()) throw BadItem(item, "nothing is given");
  if (dash == 0 || dash == text.size() - 1) {
    throw BadItem(item, fmt::format("'{}' is a range with one end", printable(text)));
  }
  node.vlan_first = vlan_id(item, text.substr(0, dash));
  if (dash == std::string_view::npos) return node;
  node.vlan_second = vlan_id(item, text.substr(dash + 1));
  if (node.vlan_second < node.vlan_first) {
    throw BadItem(item, fmt::format("'{}' ends before it begins", printable(text)));
  }
  return node;
}

olt_vlan_node vlan(const Item &item, size_t longest_description) {
  std::string_view text = item.text;
  size_t colon = text.find(':');
  olt_vlan_node node = vlan_range(item, text.substr(0, colon));
  if (colon == std::string_view::npos) return node;
  text.remove_prefix(colon + 1);
  if (longest_description == 0) throw BadItem(item, "a description is not taken here");
  if (text.size() > longest_description) {
    throw BadItem(item, fmt::format("the description has {} bytes", text.size()));
  }
  std::copy(text.begin(), text.end(), node.vlan_descr);
  return node;
}

const Field &field_named(const Item &item, const Argument &argument, std::string_view name) {
  for (const Field &field : argument.fields) {
    if (field.name == name) return field;
  }
  throw BadItem(item, fmt::format("there is no field '{}'", printable(name)));
}

Bytes field_bytes(const Item &item, const Field &field, std::string_view value) {
  if (field.kind != FieldKind::kMac) {
    if (value.size() <= field.width) return {value.begin(), value.end()};
    throw BadItem(item, fmt::format("{} has {} bytes", field.name, value.size()));
  }
  auto mac = to_mac(value);
  if (!mac) {
    throw BadItem(item, fmt::format("{}: '{}' is no MAC address", field.name, printable(value)));
  }
  return {mac->begin(), mac->end()};
}

std::vector<std::string> words_of(const Item &item) {
  try {
    return split_words(item.text);
  } catch (const Error &error) {
    throw BadItem(item, error.what());
  }
}

Bytes entry_by_field(const Item &item, const Argument &argument) {
  Bytes entry(argument.size);
  std::vector<const Field *> seen;
  for (const std::string &word : words_of(item)) {
    size_t equals = word.find('=');
    // The word may be a part of a password and is not shown.
    if (equals == std::string::npos) throw BadItem(item, "a word is not FIELD=VALUE");
    const Field &field = field_named(item, argument, std::string_view(word).substr(0, equals));
    if (std::find(seen.begin(), seen.end(), &field) != seen.end()) {
      throw BadItem(item, fmt::format("{} is given twice", field.name));
    }
    seen.push_back(&field);
    std::string value = word.substr(equals + 1);
    if (field.secret && value == "-") value = read_secret(field.name);
    Bytes bytes = field_bytes(item, field, value);
    std::copy(bytes.begin(), bytes.end(), entry.begin() + field.offset);
  }
  return entry;
}

Bytes entry(const Item &item, const Argument &argument) {
  if (item.text.find('=') != std::string::npos) return entry_by_field(item, argument);
  std::optional<Bytes> bytes = from_hex(item.text);
  if (!bytes) throw BadItem(item, "neither FIELD=VALUE nor pairs of hex digits");
  if (bytes->size() != argument.size) {
    throw BadItem(item, fmt::format("{} bytes given", bytes->size()));
  }
  return *bytes;
}

}  // namespace

std::vector<Item> split_items(std::string_view text, char separator) {
  std::vector<Item> items;
  if (trimmed(text).empty()) return items;
  for (size_t begin = 0; begin <= text.size();) {
    size_t end = std::min(text.find(separator, begin), text.size());
    items.push_back({fmt::format("item {}", items.size() + 1),
                     std::string(trimmed(text.substr(begin, end - begin)))});
    begin = end + 1;
  }
  return items;
}

std::vector<Item> split_lines(std::string_view content) {
  std::vector<Item> items;
  for (size_t number = 1; !content.empty(); ++number) {
    std::string_view line = content.substr(0, content.find('\n'));
    content.remove_prefix(std::min(line.size() + 1, content.size()));
    line = trimmed(line);
    if (line.empty() || line.starts_with('#')) continue;
    items.push_back({fmt::format("line {}", number), std::string(line)});
  }
  return items;
}

std::vector<olt_vlan_node> read_vlans(std::span<const Item> items, size_t longest_description) {
  std::vector<olt_vlan_node> nodes;
  for (const Item &item : items) nodes.push_back(vlan(item, longest_description));
  return nodes;
}

std::vector<uint16_t> read_vlan_ids(std::span<const Item> items) {
  std::vector<uint16_t> ids;
  for (const Item &item : items) {
    olt_vlan_node range = vlan(item, 0);
    ids.push_back(range.vlan_first);
    while (ids.back() < range.vlan_second) ids.push_back(static_cast<uint16_t>(ids.back() + 1));
  }
  return ids;
}

Bytes read_entries(std::span<const Item> items, const Argument &argument) {
  Bytes bytes;
  for (const Item &item : items) {
    Bytes one = entry(item, argument);
    bytes.insert(bytes.end(), one.begin(), one.end());
  }
  return bytes;
}

}  // namespace olt::cli
