#include <fmt/format.h>

#include <algorithm>

#include "base/listing.h"
#include "cli/call/result_text.h"
#include "cli/output/format.h"

namespace olt::cli {

using nlohmann::ordered_json;

namespace {

ordered_json json_of(const NamedValue &value) {
  return value.json();
}

ordered_json json_of(const NamedValues &values) {
  ordered_json object = ordered_json::object();
  for (const NamedValue &named : values) object[std::string(named.name())] = json_of(named);
  return object;
}

ordered_json json_of(const WrittenFile &file) {
  return {{"file", file.path}, {"length", file.length}};
}

ordered_json json_of(const Output &output) {
  return std::visit([](const auto &content) { return json_of(content); }, output.content);
}

template <typename Content>
ordered_json or_null(const std::optional<Content> &content) {
  return content ? ordered_json(*content) : ordered_json();
}

ordered_json json_of(const Changes &changes) {
  ordered_json list = ordered_json::array();
  for (const Change &change : changes) {
    list.push_back({{"field", change.before.name()},
                    {"before", change.before.json()},
                    {"after", change.after.json()}});
  }
  return list;
}

bool all_differ(TableRow names) {
  std::sort(names.begin(), names.end());
  return std::adjacent_find(names.begin(), names.end()) == names.end();
}

/// An object where that loses no cell.
ordered_json row_json(const ListingSection &section, const TableRow &row) {
  if (section.rule == Rule::kNone || !all_differ(section.table[0])) return row;
  ordered_json object = ordered_json::object();
  for (size_t i = 0; i < row.size(); ++i) object[section.table[0][i]] = row[i];
  return object;
}

ordered_json json_of(const ListingSection &section) {
  bool is_named = section.rule == Rule::kBelowFirst;
  ordered_json rows = ordered_json::array();
  for (size_t i = is_named ? 1 : 0; i < section.table.size(); ++i) {
    rows.push_back(row_json(section, section.table[i]));
  }
  return {{"heading", section.heading},
          {"columns", is_named ? ordered_json(section.table[0]) : ordered_json()},
          {"rows", rows}};
}

ordered_json json_of(const std::optional<Listing> &listing) {
  if (!listing) return nullptr;
  ordered_json object = {{"name", listing->name},
                         {"text", or_null(listing->text)},
                         {"title", nullptr},
                         {"sections", nullptr}};
  std::optional<ListingContent> content = read_listing_text(listing->text.value_or(""));
  if (!content) return object;
  object["title"] = content->title;
  object["sections"] = ordered_json::array();
  for (const ListingSection &section : content->sections) {
    object["sections"].push_back(json_of(section));
  }
  return object;
}

/// Bytes of the character at the front that could command a terminal; JSON itself escapes only
/// those below U+0020.
size_t control_at_front(std::string_view text) {
  if (text[0] == '\x7f') return 1;
  bool is_c1 = text.size() > 1 && text[0] == '\xc2' && static_cast<uint8_t>(text[1]) < 0xA0;
  return is_c1 ? 2 : 0;
}

class JsonFormatter : public Formatter {
 public:
  std::string result(const Result &result) override { return json_line(result_json(result)); }

  std::string row(const std::string &reader, const NamedValues &columns) override {
    return json_line({{"version", kJsonVersion}, {"reader", reader}, {"row", json_of(columns)}});
  }

  std::string end_of_rows() override { return ""; }

  std::string control(const std::string &command, const ordered_json &reply) override {
    ordered_json object = {{"version", kJsonVersion}, {"command", command}};
    object.update(reply);
    return json_line(object);
  }
};

}  // namespace

ordered_json result_json(const Result &result) {
  const catalog::Operation &operation = result.operation;
  ResultParts parts;
  if (operation.address.sends()) parts = take_apart(result.reason);
  ordered_json object = {
      {"version", kJsonVersion},
      {"operation", operation.name},
      {"result", result.code},
      {"failed", result.failed()},
      {"transport", or_null(parts.transport)},
      {"status", or_null(parts.status)},
      {"outputs", ordered_json::object()},
      {"listing", json_of(result.listing)},
  };
  for (const Output &output : result.outputs) {
    object["outputs"][std::string(output.name)] = json_of(output);
  }
  if (result.changes) object["changes"] = json_of(*result.changes);
  if (result.is_fallback) object["fallback"] = true;
  return object;
}

std::string json_line(const ordered_json &object) {
  std::string dumped = object.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
  std::string line;
  for (std::string_view rest = dumped; !rest.empty();) {
    size_t control = control_at_front(rest);
    if (control == 0) {
      line += rest[0];
    } else {
      line += fmt::format("\\u{:04x}", static_cast<uint8_t>(rest[control - 1]));
    }
    rest.remove_prefix(control == 0 ? 1 : control);
  }
  return line + '\n';
}

std::unique_ptr<Formatter> make_json_formatter() {
  return std::make_unique<JsonFormatter>();
}

}  // namespace olt::cli
