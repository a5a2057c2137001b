#include "box/message/id_set.h"

#include <fmt/format.h>

#include <charconv>

namespace olt::box {

namespace {

/// Longer than the text of every second id.
constexpr size_t kMaxSetText = 16'384;

std::string range_text(IdRange range) {
  return range.first == range.last ? fmt::to_string(range.first)
                                   : fmt::format("{}-{}", range.first, range.last);
}

/// Removes a number from the front of the text.
std::optional<uint16_t> take_number(std::string_view &text) {
  uint16_t number = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<size_t>(end - text.data()));
  return number;
}

bool take(std::string_view &text, char c) {
  if (!text.starts_with(c)) return false;
  text.remove_prefix(1);
  return true;
}

std::optional<IdSet> ids_from_text(std::string_view text) {
  IdSet ids;
  if (text.empty()) return ids;
  do {
    auto first = take_number(text);
    auto last = take(text, '-') ? take_number(text) : first;
    if (!first || !last || !is_range({*first, *last})) return std::nullopt;
    ids |= ids_in(IdRange{*first, *last});
  } while (take(text, ','));
  if (!text.empty()) return std::nullopt;
  return ids;
}

}  // namespace

bool is_range(IdRange range) {
  return range.first >= 1 && range.first <= range.last && range.last <= kLastVlan;
}

IdSet ids_in(IdRange range) {
  const IdSet all = ~IdSet();
  return (all << range.first) & (all >> static_cast<size_t>(kLastVlan - range.last));
}

IdSet ids_in(const std::vector<IdRange> &ranges) {
  IdSet ids;
  for (IdRange range : ranges) ids |= ids_in(range);
  return ids;
}

std::vector<IdRange> ranges_of(const IdSet &ids) {
  std::vector<IdRange> ranges;
  size_t left = ids.count();
  for (uint16_t id = 1; id <= kLastVlan && left > 0; ++id) {
    if (!ids[id]) continue;
    --left;
    if (ids[id - 1U]) {
      ranges.back().last = id;
    } else {
      ranges.push_back({id, id});
    }
  }
  return ranges;
}

std::optional<IdSet> known_ids(const std::vector<IdRange> &ranges, const IdSet &known) {
  IdSet ids;
  for (IdRange range : ranges) {
    IdSet found = ids_in(range) & known;
    if (found.none()) return std::nullopt;
    ids |= found;
  }
  return ids;
}

std::string ids_to_text(const IdSet &ids) {
  std::string text;
  for (IdRange range : ranges_of(ids)) {
    if (!text.empty()) text += ',';
    text += range_text(range);
  }
  return text;
}

std::string ids_to_cell(const IdSet &ids, std::string_view prefix) {
  std::string cell;
  for (IdRange range : ranges_of(ids)) {
    if (!cell.empty()) cell += ',';
    cell += prefix;
    cell += range_text(range);
  }
  return cell.empty() ? "-" : cell;
}

std::vector<std::string> ids_to_cells(const IdSet &ids, size_t width) {
  std::vector<std::string> cells = {""};
  for (IdRange range : ranges_of(ids)) {
    std::string text = range_text(range);
    if (!cells.back().empty()) {
      cells.back() += ',';
      if (cells.back().size() + text.size() > width) cells.emplace_back();
    }
    cells.back() += text;
  }
  if (cells.back().empty()) cells.back().push_back('-');
  return cells;
}

void describe_ids(Archive &archive, std::string_view key, IdSet &ids) {
  std::string text = ids_to_text(ids);
  archive.text(key, text, kMaxSetText);
  if (!archive.is_reading()) return;
  auto read = ids_from_text(text);
  if (!read) archive.refuse(key, "numbers up to 4094 as in \"1,20-25\"");
  ids = *read;
}

Message vlan_message(uint32_t type, std::string_view name, size_t head, VlanAction act) {
  auto handle = [head, act = std::move(act)](const Request &request, Reply &) {
    auto ranges = read_ranges(request.records<VlanElement>(head));
    return ranges ? act(request, *ranges) : Status::kBadValue;
  };
  return {kMainModule, type, name, {head, head + sizeof(VlanElement) * kLastVlan}, handle};
}

}  // namespace olt::box
