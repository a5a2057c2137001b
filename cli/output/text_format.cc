#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "base/table.h"
#include "cli/output/format.h"
#include "cli/text/terminal_size.h"

namespace olt::cli {

using catalog::FieldKind;
using nlohmann::ordered_json;

namespace {

/// Bytes that fit on the line of their name.
constexpr size_t kShort = 16;
constexpr size_t kWidestCell = 48;

/// Long bytes are dumped below their name.
std::string text_of(const NamedValue &value) {
  bool is_short =
      value.is_masked || value.field.kind != FieldKind::kBytes || value.bytes.size() <= kShort;
  return is_short ? value.text()
                  : fmt::format("{} bytes\n{}", value.bytes.size(), hex_dump(value.bytes));
}

std::string line(std::string_view name, const std::string &text) {
  return fmt::format("{} = {}{}", name, text, text.ends_with('\n') ? "" : "\n");
}

std::string lines_of(std::string_view name, const NamedValue &value) {
  return line(name, text_of(value));
}

std::string lines_of(std::string_view /*name*/, const NamedValues &values) {
  std::string text;
  for (const NamedValue &named : values) text += lines_of(named.name(), named);
  return text;
}

std::string lines_of(std::string_view name, const WrittenFile &file) {
  return line(name, fmt::format("{} bytes in {}", file.length, printable(file.path)));
}

std::string lines_of(const Output &output) {
  return std::visit([&output](const auto &content) { return lines_of(output.name, content); },
                    output.content);
}

/// A listing keeps its lines and tabs.
std::string lines_of(std::string_view listing) {
  std::string text;
  while (!listing.empty()) {
    size_t end = std::min(listing.find_first_of("\n\t"), listing.size());
    text += printable(listing.substr(0, end));
    if (end < listing.size()) text += listing[end++];
    listing.remove_prefix(end);
  }
  if (!text.ends_with('\n')) text += '\n';
  return text;
}

// Rows.

bool continues_character(char c) {
  return (static_cast<uint8_t>(c) & 0xC0) == 0x80;
}

std::string cell_of(const NamedValue &value) {
  bool is_hex = !value.is_masked && value.field.kind == FieldKind::kBytes;
  std::string text = is_hex ? to_hex(value.bytes) : value.text();
  if (text.size() > kWidestCell) {
    size_t end = kWidestCell - 3;
    while (continues_character(text[end])) --end;
    text = text.substr(0, end) + "...";
  }
  return text.empty() ? "-" : text;
}

std::string cell_named(std::string_view name, const NamedValues &columns) {
  for (const NamedValue &column : columns) {
    if (column.name() == name) return cell_of(column);
  }
  return "-";
}

// Replies of the box's own controls.

/// A list of names has commas between them.
std::string scalar_text(const ordered_json &value) {
  if (value.is_array())
    return fmt::format("{}", fmt::join(value.get<std::vector<std::string>>(), ","));
  return value.is_string() ? printable(value.get<std::string>()) : printable(value.dump());
}

/// An object on one line: "id=1 type=12 status=5".
std::string row_text(const ordered_json &object) {
  std::string text;
  for (const auto &[name, value] : object.items()) {
    if (!text.empty()) text += ' ';
    text += fmt::format("{}={}", printable(name), scalar_text(value));
  }
  return text + '\n';
}

std::string reply_text(const std::string &name, const ordered_json &value) {
  if (!value.is_structured()) return line(printable(name), scalar_text(value));
  std::string text;
  if (value.is_array()) {
    if (value.empty()) return fmt::format("{}: none\n", printable(name));
    text = fmt::format("{}:\n", printable(name));
    for (const ordered_json &element : value) text += "  " + row_text(element);
    return text;
  }
  for (const auto &[inner, member] : value.items()) {
    text += reply_text(name.empty() ? inner : fmt::format("{}.{}", name, inner), member);
  }
  return text;
}

class TextFormatter : public Formatter {
 public:
  std::string result(const Result &result) override {
    std::string text;
    if (result.failed()) return text;
    if (const char *count = result.operation.outcome.count) {
      text = line(count, fmt::to_string(result.code));
    }
    for (const Output &output : result.outputs) text += lines_of(output);
    if (result.listing && result.listing->text) text += lines_of(*result.listing->text);
    return text;
  }

  /// Kept: how wide the columns are shows with the last row.
  std::string row(const std::string & /*reader*/, const NamedValues &columns) override {
    if (table_.empty()) {
      table_.emplace_back();
      for (const NamedValue &column : columns) table_[0].emplace_back(column.name());
    }
    TableRow cells;
    for (const std::string &name : table_[0]) cells.push_back(cell_named(name, columns));
    table_.push_back(std::move(cells));
    return "";
  }

  std::string end_of_rows() override {
    std::vector<TableRow> table = std::exchange(table_, {});
    if (table.empty()) return "no rows\n";
    std::optional<TerminalSize> terminal = terminal_size();
    return terminal ? table_text_within(table, terminal->columns) : table_text(table);
  }

  std::string control(const std::string & /*command*/, const ordered_json &reply) override {
    std::string text;
    for (const auto &[name, value] : reply.items()) {
      text += reply_text(name == "counters" ? "" : name, value);
    }
    return text;
  }

 private:
  std::vector<TableRow> table_;  ///< the names of the columns first
};

}  // namespace

std::unique_ptr<Formatter> make_text_formatter() {
  return std::make_unique<TextFormatter>();
}

}  // namespace olt::cli
