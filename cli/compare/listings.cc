#include "cli/compare/listings.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "base/listing.h"
#include "base/text.h"

namespace olt::cli {

namespace {

using ListingRows = std::vector<TableRow>;
using ListingLines = std::vector<std::string>;

/// The one at this place, or null.
template <typename Item>
const Item *item_at(const std::vector<Item> &items, size_t place) {
  return place < items.size() ? &items[place] : nullptr;
}

/// A row as a line, without its first cells.
std::string line_of(const TableRow &row, size_t left_out = 0) {
  size_t begin = std::min(left_out, row.size());
  return fmt::format("{}",
                     fmt::join(row.begin() + static_cast<std::ptrdiff_t>(begin), row.end(), "  "));
}

std::optional<std::string> line_of(const TableRow *row) {
  return row == nullptr ? std::nullopt : std::optional(line_of(*row));
}

/// The rows by their first cell; nothing when two have the same.
std::optional<std::map<std::string, const TableRow *>> by_first_cell(const ListingRows &rows) {
  std::map<std::string, const TableRow *> found;
  for (const TableRow &row : rows)
    if (row.empty() || !found.emplace(row[0], &row).second) return std::nullopt;
  return found;
}

class ListingDifferences {
 public:
  void compare(const ListingContent &recorded, const ListingContent &now) {
    add("title", 0, recorded.title, now.title);
    for (size_t i = 0; i < std::max(recorded.sections.size(), now.sections.size()); ++i)
      compare_sections(item_at(recorded.sections, i), item_at(now.sections, i), i + 1);
  }

  /// What has been inserted or removed in one place makes no other lines different.
  void compare(const ListingLines &recorded, const ListingLines &now) {
    auto [first, first_now] =
        std::mismatch(recorded.begin(), recorded.end(), now.begin(), now.end());
    auto last = std::mismatch(recorded.rbegin(), std::make_reverse_iterator(first), now.rbegin(),
                              std::make_reverse_iterator(first_now))
                    .first.base();
    auto begin = static_cast<size_t>(first - recorded.begin());
    auto end = static_cast<size_t>(last - recorded.begin());
    size_t end_now = now.size() - (recorded.size() - end);
    for (size_t i = begin; i < std::max(end, end_now); ++i) {
      add("line", i + 1, i < end ? std::optional(recorded[i]) : std::nullopt,
          i < end_now ? std::optional(now[i]) : std::nullopt);
    }
  }

  std::vector<FieldDifference> take() { return std::move(differences_); }

 private:
  using Text = std::optional<std::string>;

  void compare_sections(const ListingSection *recorded, const ListingSection *now, size_t item) {
    add("heading", item, recorded == nullptr ? Text() : recorded->heading,
        now == nullptr ? Text() : now->heading);
    if (recorded == nullptr || now == nullptr) return;
    ListingRows before = recorded->table;
    ListingRows after = now->table;
    TableRow names;
    bool has_names = recorded->rule != Rule::kNone && now->rule != Rule::kNone;
    if (has_names) {
      if (before[0] != after[0]) return add("columns", item, line_of(before[0]), line_of(after[0]));
      names = before[0];
      before.erase(before.begin());
      after.erase(after.begin());
    }
    if (!compare_by_first_cell(before, after, names)) {
      for (size_t i = 0; i < std::max(before.size(), after.size()); ++i)
        compare_rows(item_at(before, i), item_at(after, i), names, "", i + 1);
    }
  }

  /// @return false when rows cannot be found again so
  bool compare_by_first_cell(const ListingRows &recorded, const ListingRows &now,
                             const TableRow &names) {
    auto before = by_first_cell(recorded);
    auto after = by_first_cell(now);
    if (!before || !after) return false;
    bool is_shared = std::any_of(before->begin(), before->end(),
                                 [&after](const auto &row) { return after->contains(row.first); });
    if (!is_shared && !before->empty() && !after->empty()) return false;
    for (const TableRow &row : recorded) {
      auto found = after->find(row[0]);
      compare_rows(&row, found == after->end() ? nullptr : found->second, names, row[0], 0);
    }
    for (const TableRow &row : now)
      if (!before->contains(row[0])) compare_rows(nullptr, &row, names, row[0], 0);
    return true;
  }

  /// @param key what both rows begin with; empty when rows are found by their order
  void compare_rows(const TableRow *recorded, const TableRow *now, const TableRow &names,
                    const std::string &key, size_t item) {
    std::string row = key.empty() ? "row" : key;
    if (recorded == nullptr || now == nullptr)
      return add(row, item, line_of(recorded), line_of(now));
    if (names.empty()) {
      size_t left_out = key.empty() ? 0 : 1;
      return add(row, item, line_of(*recorded, left_out), line_of(*now, left_out));
    }
    for (size_t i = 0; i < names.size(); ++i)
      add(key.empty() ? names[i] : fmt::format("{}.{}", key, names[i]), item, (*recorded)[i],
          (*now)[i]);
  }

  void add(const std::string &name, size_t item, const Text &recorded, const Text &now) {
    if (recorded == now) return;
    differences_.push_back({fmt::format("{}{}", kListingPrefix, printable(name)), item,
                            compared_text(recorded), compared_text(now)});
  }

  std::vector<FieldDifference> differences_;
};

ListingLines text_lines(const std::string &text) {
  ListingLines lines;
  for (size_t begin = 0; begin < text.size();) {
    size_t end = std::min(text.find('\n', begin), text.size());
    lines.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return lines;
}

}  // namespace

std::vector<FieldDifference> listing_differences(const std::string &recorded,
                                                 const std::string &now) {
  ListingDifferences differences;
  std::optional<ListingContent> before = read_listing_text(recorded);
  std::optional<ListingContent> after = read_listing_text(now);
  if (before && after) {
    differences.compare(*before, *after);
  } else {
    differences.compare(text_lines(recorded), text_lines(now));
  }
  return differences.take();
}

}  // namespace olt::cli
