#include "cli/watch/rates.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>
#include <string_view>
#include <variant>

#include "base/listing.h"

namespace olt::cli {

using catalog::FieldKind;

namespace {

constexpr std::string_view kCounterUnits[] = {"bytes", "packets"};
constexpr std::string_view kCounterHeading = "Counters";

std::optional<uint64_t> count_in(std::string_view cell) {
  uint64_t number = 0;
  auto [end, error] = std::from_chars(cell.data(), cell.data() + cell.size(), number);
  if (error != std::errc() || end != cell.data() + cell.size()) return std::nullopt;
  return number;
}

bool is_counter(const NamedValue &value) {
  if (value.is_masked || value.field.kind != FieldKind::kNumber || value.field.unit == nullptr) {
    return false;
  }
  return std::any_of(std::begin(kCounterUnits), std::end(kCounterUnits),
                     [&value](std::string_view unit) { return unit == value.field.unit; });
}

void add(std::vector<Counter> &counters, const NamedValue &value) {
  if (!is_counter(value)) return;
  if (auto json = value.json(); json.is_number_unsigned()) {
    counters.push_back({std::string(value.name()), json.get<uint64_t>()});
  }
}

void add(std::vector<Counter> &counters, const NamedValues &values) {
  for (const NamedValue &value : values) add(counters, value);
}

void add(std::vector<Counter> & /*counters*/, const WrittenFile & /*file*/) {}

/// A cell is named after the first one of its row and after its column.
void add(std::vector<Counter> &counters, const ListingSection &section) {
  if (section.heading != kCounterHeading || section.rule == Rule::kNone) return;
  for (size_t row = 1; row < section.table.size(); ++row) {
    const TableRow &cells = section.table[row];
    for (size_t column = 1; column < cells.size(); ++column) {
      if (std::optional<uint64_t> number = count_in(cells[column])) {
        counters.push_back({fmt::format("{}, {}", cells[0], section.table[0][column]), *number});
      }
    }
  }
}

}  // namespace

std::vector<Counter> counters_of(const Result &result) {
  std::vector<Counter> counters;
  for (const Output &output : result.outputs) {
    std::visit([&counters](const auto &content) { add(counters, content); }, output.content);
  }
  if (!result.listing || !result.listing->text) return counters;
  if (auto content = read_listing_text(*result.listing->text)) {
    for (const ListingSection &section : content->sections) add(counters, section);
  }
  return counters;
}

std::vector<Rate> Rates::next(const std::vector<Counter> &counters, Moment now) {
  double seconds = std::chrono::duration<double>(now - then_).count();
  std::vector<Rate> rates;
  std::map<std::string, uint64_t> after;
  for (const Counter &counter : counters) {
    auto before = before_.find(counter.name);
    if (before != before_.end() && counter.value >= before->second && seconds > 0) {
      rates.push_back(
          {counter.name, static_cast<double>(counter.value - before->second) / seconds});
    }
    after[counter.name] = counter.value;
  }
  before_ = std::move(after);
  then_ = now;
  return rates;
}

}  // namespace olt::cli
