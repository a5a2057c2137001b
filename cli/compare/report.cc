#include "cli/compare/report.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/table.h"
#include "base/text.h"
#include "cli/output/format.h"
#include "cli/show/selection.h"

namespace olt::cli {

using nlohmann::ordered_json;

namespace {

/// Characters of a longer value that are shown.
constexpr size_t kLongestValue = 48;
/// Of these, those before the first one that differs.
constexpr size_t kBeforeDifference = 8;
/// Exchanges of an operation that JUnit XML describes.
constexpr size_t kMaxFailures = 20;

struct SkipName {
  const char *name;  ///< in JSON
  const char *text;
};

/// In the order of Skip.
constexpr std::array<SkipName, kSkips> kSkipNames = {
    {{"changing", "that may change the box (--all sends them, too)"},
     {"masked", "whose request has masked secrets"},
     {"cut", "whose request was cut"},
     {"incomplete", "whose request or answer is missing"}}};

/// Long values from where they begin to differ.
std::string excerpt(const std::string &text, size_t same) {
  if (text.size() <= kLongestValue) return text;
  size_t begin = same > kLongestValue ? same - kBeforeDifference : 0;
  while (begin > 0 && begin < text.size() && continues_character(text[begin])) --begin;
  size_t end = std::min(begin + kLongestValue, text.size());
  while (end < text.size() && continues_character(text[end])) --end;
  return fmt::format("{}{}{}", begin > 0 ? "..." : "",
                     std::string_view(text).substr(begin, end - begin),
                     end < text.size() ? "..." : "");
}

std::string text_of(const FieldDifference &difference, const char *arrow = "→") {
  const std::string &recorded = difference.recorded.text;
  const std::string &now = difference.now.text;
  auto same = static_cast<size_t>(
      std::mismatch(recorded.begin(), recorded.end(), now.begin(), now.end()).first -
      recorded.begin());
  return fmt::format("  {}{}: {} {} {}\n", difference.field,
                     difference.item == 0 ? "" : fmt::format(" of item {}", difference.item),
                     excerpt(recorded, same), arrow, excerpt(now, same));
}

ordered_json json_of(const FieldDifference &difference) {
  return {{"field", difference.field},
          {"item", difference.item == 0 ? ordered_json() : ordered_json(difference.item)},
          {"recorded", difference.recorded.json},
          {"now", difference.now.json}};
}

std::string json_of(const Recorded &recorded, const std::vector<FieldDifference> &differences) {
  ordered_json list = ordered_json::array();
  for (const FieldDifference &difference : differences) list.push_back(json_of(difference));
  ordered_json object = {{"version", kJsonVersion}, {"command", "compare"}};
  object.update(head_json(recorded.exchange, recorded.operations));
  object["differences"] = list;
  return json_line(object);
}

/// XML takes neither control characters nor bytes that are not UTF-8.
std::string xml(std::string_view text) {
  std::string escaped;
  for (size_t begin = 0; begin <= text.size();) {
    size_t end = std::min(text.find('\n', begin), text.size());
    for (char c : printable_ascii(text.substr(begin, end - begin))) {
      switch (c) {
        case '&':
          escaped += "&amp;";
          break;
        case '<':
          escaped += "&lt;";
          break;
        case '>':
          escaped += "&gt;";
          break;
        case '"':
          escaped += "&quot;";
          break;
        default:
          escaped += c;
      }
    }
    if (end < text.size()) escaped += '\n';
    begin = end + 1;
  }
  return escaped;
}

}  // namespace

void CompareReport::skip(const Recorded &recorded, Skip reason) {
  ++skips_[static_cast<size_t>(reason)];
  ++counts_[recorded.name].skipped;
}

std::string CompareReport::add(const Recorded &recorded,
                               const std::vector<FieldDifference> &differences, bool as_json) {
  Count &count = counts_[recorded.name];
  ++sent_;
  if (differences.empty()) {
    ++count.equal;
    return "";
  }
  ++differing_;
  std::string text = title_of(recorded.exchange, recorded.operations);
  text += '\n';
  std::string failure = text;
  for (const FieldDifference &difference : differences) {
    text += text_of(difference);
    failure += text_of(difference, "->");
  }
  if (count.differing++ < kMaxFailures) count.failures += failure;
  return as_json ? json_of(recorded, differences) : text;
}

std::string CompareReport::summary(bool as_json) const {
  return as_json ? json() : text();
}

std::string CompareReport::text() const {
  std::vector<TableRow> rows = {{"operation", "exchanges", "equal", "differing", "skipped"}};
  Count total;
  for (const auto &[name, count] : counts_) {
    rows.push_back({name, fmt::to_string(count.exchanges()), fmt::to_string(count.equal),
                    fmt::to_string(count.differing), fmt::to_string(count.skipped)});
    total.equal += count.equal;
    total.differing += count.differing;
    total.skipped += count.skipped;
  }
  rows.push_back({"all", fmt::to_string(total.exchanges()), fmt::to_string(total.equal),
                  fmt::to_string(total.differing), fmt::to_string(total.skipped)});
  std::string text = differing_ == 0 ? "" : "\n";
  text += table_text(rows, Rule::kBelowFirst);
  for (size_t i = 0; i < kSkips; ++i)
    if (skips_[i] > 0) text += fmt::format("skipped: {} {}\n", skips_[i], kSkipNames[i].text);
  if (listings_ + missing_listings_ > 0)
    text += fmt::format("listings: {} compared, {} not kept\n", listings_, missing_listings_);
  return text;
}

std::string CompareReport::json() const {
  ordered_json list = ordered_json::array();
  for (const auto &[name, count] : counts_) {
    list.push_back({{"operation", name},
                    {"exchanges", count.exchanges()},
                    {"equal", count.equal},
                    {"differing", count.differing},
                    {"skipped", count.skipped}});
  }
  ordered_json skipped = ordered_json::object();
  for (size_t i = 0; i < kSkips; ++i) skipped[kSkipNames[i].name] = skips_[i];
  return json_line({{"version", kJsonVersion},
                    {"command", "compare"},
                    {"equal", sent_ - differing_},
                    {"differing", differing_},
                    {"skipped", skipped},
                    {"listings", {{"compared", listings_}, {"missing", missing_listings_}}},
                    {"by_operation", list}});
}

std::string CompareReport::junit(const std::string &capture) const {
  size_t failing = 0;
  size_t skipped = 0;
  std::string cases;
  for (const auto &[name, count] : counts_) {
    size_t sent = count.equal + count.differing;
    if (count.differing > 0) ++failing;
    if (sent == 0) ++skipped;
    cases += fmt::format("    <testcase classname=\"compare\" name=\"{}\"", xml(name));
    if (count.differing > 0) {
      cases += fmt::format(
          ">\n      <failure message=\"{} of {} with differences\">{}</failure>\n"
          "    </testcase>\n",
          count.differing, counted(sent, "exchange"), xml(count.failures));
    } else if (sent == 0) {
      cases += fmt::format(">\n      <skipped message=\"{} not sent\"/>\n    </testcase>\n",
                           counted(count.skipped, "exchange"));
    } else {
      cases += "/>\n";
    }
  }
  std::string numbers = fmt::format("tests=\"{}\" failures=\"{}\" errors=\"0\" skipped=\"{}\"",
                                    counts_.size(), failing, skipped);
  return fmt::format(
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<testsuites {0}>\n"
      "  <testsuite name=\"{1}\" {0}>\n"
      "{2}"
      "  </testsuite>\n"
      "</testsuites>\n",
      numbers, xml(capture), cases);
}

}  // namespace olt::cli
