#include "cli/walk/query.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "base/text.h"
#include "cli/text/error.h"
#include "cli/text/items.h"

namespace olt::cli {

using catalog::Field;
using catalog::FieldKind;
using nlohmann::ordered_json;

namespace {

constexpr std::string_view kColumns = "--columns";
constexpr std::string_view kSort = "--sort";
constexpr std::string_view kReverse = "--reverse";
constexpr CommandOption kWalkOptions[] = {{kColumns, "A,B", "shows these columns, in this order"},
                                          {kSort, "A,B", "sorts by these columns"},
                                          {kReverse, "", "turns the order round"}};

std::vector<std::string> names_in(std::string_view option, const std::string &list) {
  std::vector<std::string> names;
  for (Item &item : split_items(list, ',')) names.push_back(std::move(item.text));
  if (names.empty()) wrong_usage("walk: {} is empty; expected names of columns as a,b", option);
  return names;
}

const NamedValue *find(const NamedValues &row, const std::string &name) {
  auto found = std::find_if(row.begin(), row.end(),
                            [&name](const NamedValue &value) { return value.name() == name; });
  return found == row.end() ? nullptr : &*found;
}

const Field &find(std::span<const Field> columns, const std::string &name) {
  auto found = std::find_if(columns.begin(), columns.end(),
                            [&name](const Field &field) { return field.name == name; });
  if (found != columns.end()) return *found;
  std::vector<std::string> names;
  for (const Field &field : columns) names.emplace_back(field.name);
  wrong_usage("walk: there is no column '{}'; expected one of: {}", printable(name),
              fmt::join(names, ", "));
}

/// A masked secret must not be found out by comparing it.
void check_comparable(const Field &field, const Detail &detail) {
  if (!field.secret || detail.secrets) return;
  wrong_usage("walk: {} is a secret; expected --show-secrets to compare it", field.name);
}

/// The value as a row shows it.
std::string as_shown(const Field &field, const std::string &value) {
  if (field.width == Field::kToTheEnd) return value;
  try {
    return form_of(field.kind).text(field, parse_field(field, value));
  } catch (const BadValue &bad) {
    wrong_usage("walk: {}: {}; expected {}", field.name, bad.what(),
                form_of(field.kind).expected(field));
  }
}

/// What rows are sorted by: numbers by value, addresses by their bytes, others as text.
ordered_json sort_key(const NamedValue *value) {
  if (value == nullptr) return nullptr;
  if (value->field.kind == FieldKind::kIpv4) return value->bytes;
  return value->json();
}

}  // namespace

Query::Query(std::span<const std::string> words) {
  auto set = [this](std::string_view name, const std::string &value) { set_option(name, value); };
  std::vector<std::string> others = take_options("walk", kWalkOptions, words, set);
  if (!others.empty()) reader_ = others[0];
  for (size_t i = 1; i < others.size(); ++i) add_condition(others[i]);
}

std::span<const CommandOption> Query::options() {
  return kWalkOptions;
}

void Query::set_option(std::string_view name, const std::string &value) {
  if (name == kReverse) {
    is_reversed_ = true;
  } else {
    (name == kColumns ? columns_ : sort_) = names_in(name, value);
  }
}

void Query::add_condition(const std::string &word) {
  size_t equals = word.find('=');
  if (equals == std::string::npos) {
    wrong_usage("walk: '{}' given; expected COLUMN=VALUE or an option", printable(word));
  }
  conditions_.push_back({word.substr(0, equals), word.substr(equals + 1)});
}

void Query::check(std::span<const Field> columns, const Detail &detail) {
  for (const std::string &name : columns_) find(columns, name);
  for (const std::string &name : sort_) check_comparable(find(columns, name), detail);
  for (Condition &condition : conditions_) {
    const Field &field = find(columns, condition.column);
    check_comparable(field, detail);
    condition.value = as_shown(field, condition.value);
  }
}

bool Query::takes(const NamedValues &row) const {
  return std::all_of(conditions_.begin(), conditions_.end(), [&row](const Condition &condition) {
    const NamedValue *value = find(row, condition.column);
    return value != nullptr && value->text() == condition.value;
  });
}

void Query::sort(std::vector<NamedValues> &rows) const {
  std::vector<std::pair<ordered_json, NamedValues>> keyed;
  for (NamedValues &row : rows) {
    ordered_json key = ordered_json::array();
    for (const std::string &name : sort_) key.push_back(sort_key(find(row, name)));
    keyed.emplace_back(std::move(key), std::move(row));
  }
  std::stable_sort(keyed.begin(), keyed.end(),
                   [](const auto &one, const auto &other) { return one.first < other.first; });
  if (is_reversed_) std::reverse(keyed.begin(), keyed.end());
  rows.clear();
  for (auto &[key, row] : keyed) rows.push_back(std::move(row));
}

NamedValues Query::shown(const NamedValues &row) const {
  if (columns_.empty()) return row;
  NamedValues shown;
  for (const std::string &name : columns_) {
    if (const NamedValue *value = find(row, name)) shown.push_back(*value);
  }
  return shown;
}

}  // namespace olt::cli
