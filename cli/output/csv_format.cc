#include <fmt/format.h>

#include "base/listing.h"
#include "base/text.h"
#include "cli/output/format.h"
#include "cli/text/error.h"

namespace olt::cli {

using catalog::FieldKind;
using nlohmann::ordered_json;

namespace {

std::string quoted(const std::string &cell) {
  if (cell.find_first_of(",\"\r\n") == std::string::npos) return cell;
  std::string text = "\"";
  for (char character : cell) text.append(character == '"' ? 2 : 1, character);
  return text + '"';
}

std::string csv_line(const TableRow &cells) {
  std::string line;
  for (const std::string &cell : cells) {
    if (&cell != &cells.front()) line += ',';
    line += quoted(cell);
  }
  return line + '\n';
}

/// Numbers have no unit, so that programs can take them.
std::string csv_cell(const NamedValue &value) {
  if (value.is_masked) return value.text();
  if (value.field.kind == FieldKind::kBytes) return to_hex(value.bytes);
  ordered_json json = value.json();
  return json.is_number() ? json.dump() : value.text();
}

std::string csv_cell(const ordered_json &value) {
  return printable(value.is_string() ? value.get<std::string>() : value.dump());
}

/// A table of the fields, or of one value.
struct Columns {
  TableRow names;
  TableRow cells;

  void add(std::string_view name, std::string cell) {
    names.emplace_back(name);
    cells.push_back(std::move(cell));
  }
  std::string text() const { return names.empty() ? "" : csv_line(names) + csv_line(cells); }
};

void add(Columns &columns, std::string_view name, const NamedValue &value) {
  columns.add(name, csv_cell(value));
}

void add(Columns &columns, std::string_view /*name*/, const NamedValues &values) {
  for (const NamedValue &value : values) add(columns, value.name(), value);
}

void add(Columns &columns, std::string_view name, const WrittenFile &file) {
  columns.add(name, printable(file.path));
}

/// Each line of a section begins with its heading; a blank line divides sections.
std::string listing_csv(const catalog::Operation &operation, const Listing &listing) {
  if (!listing.text) return "";
  std::optional<ListingContent> content = read_listing_text(*listing.text);
  if (!content) {
    fail("{}: the listing {} is not made of tables; expected --format text or json", operation.name,
         printable(listing.name));
  }
  std::string text;
  for (const ListingSection &section : content->sections) {
    if (!text.empty()) text += '\n';
    for (const TableRow &row : section.table) {
      bool names_columns = section.rule == Rule::kBelowFirst && &row == &section.table.front();
      TableRow cells = {names_columns ? "section" : printable(section.heading)};
      for (const std::string &cell : row) cells.push_back(printable(cell));
      text += csv_line(cells);
    }
  }
  return text;
}

/// Of a list: the names of the first element's members, and a line for each element.
std::string list_csv(const std::string &name, const ordered_json &list) {
  std::string text;
  for (const ordered_json &element : list) {
    Columns columns;
    if (element.is_object()) {
      for (const auto &[member, value] : element.items()) columns.add(member, csv_cell(value));
    } else {
      columns.add(name, csv_cell(element));
    }
    if (text.empty()) text = csv_line(columns.names);
    text += csv_line(columns.cells);
  }
  return text;
}

/// The lists among the members, after a table of all others.
void add_reply(const std::string &name, const ordered_json &value, Columns &scalars,
               std::vector<std::string> &lists) {
  if (value.is_object()) {
    for (const auto &[inner, member] : value.items()) {
      add_reply(name.empty() ? inner : fmt::format("{}.{}", name, inner), member, scalars, lists);
    }
  } else if (!value.is_array()) {
    scalars.add(name, csv_cell(value));
  } else if (!value.empty()) {
    lists.push_back(list_csv(name, value));
  }
}

class CsvFormatter : public Formatter {
 public:
  std::string result(const Result &result) override {
    if (result.failed()) return "";
    if (result.listing) return listing_csv(result.operation, *result.listing);
    Columns columns;
    if (const char *count = result.operation.outcome.count) {
      columns.add(count, fmt::to_string(result.code));
    }
    for (const Output &output : result.outputs) {
      std::visit([&](const auto &content) { add(columns, output.name, content); }, output.content);
    }
    return columns.text();
  }

  std::string row(const std::string & /*reader*/, const NamedValues &values) override {
    Columns columns;
    add(columns, "", values);
    std::string line = csv_line(columns.cells);
    if (!has_names_) line = csv_line(columns.names) + line;
    has_names_ = true;
    return line;
  }

  std::string end_of_rows() override {
    has_names_ = false;
    return "";
  }

  std::string control(const std::string & /*command*/, const ordered_json &reply) override {
    Columns scalars;
    std::vector<std::string> tables;
    for (const auto &[name, value] : reply.items()) {
      add_reply(name == "counters" ? "" : name, value, scalars, tables);
    }
    if (!scalars.names.empty()) tables.insert(tables.begin(), scalars.text());
    return fmt::format("{}", fmt::join(tables, "\n"));
  }

 private:
  bool has_names_ = false;  ///< of the walk in progress
};

}  // namespace

std::unique_ptr<Formatter> make_csv_formatter() {
  return std::make_unique<CsvFormatter>();
}

}  // namespace olt::cli
