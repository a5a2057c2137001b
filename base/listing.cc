#include "base/listing.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/width.h"

namespace olt {

namespace {

using Lines = std::vector<std::string_view>;

/// Lines that all end with a newline; nothing when the last one does not.
std::optional<Lines> lines_of(std::string_view text) {
  Lines lines;
  while (!text.empty()) {
    size_t end = text.find('\n');
    if (end == std::string_view::npos) return std::nullopt;
    lines.push_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  return lines;
}

bool is_rule(std::string_view line) {
  return line.starts_with('-') && line.find_first_not_of("- ") == std::string_view::npos;
}

/// Where columns begin: at each dash after a blank.
std::vector<size_t> starts_in(std::string_view rule) {
  std::vector<size_t> starts;
  for (size_t at = 0; at < rule.size(); ++at) {
    if (rule[at] == '-' && (at == 0 || rule[at - 1] == ' ')) starts.push_back(at);
  }
  return starts;
}

/// Where columns begin: after two blanks in all lines that are long enough.
std::vector<size_t> common_starts(const Lines &lines) {
  std::vector<bool> is_used;
  for (std::string_view line : lines) {
    size_t at = 0;
    while (!line.empty()) {
      auto [bytes, columns] = first_character(line);
      is_used.resize(std::max(is_used.size(), at + columns));
      if (line[0] != ' ') {
        for (size_t i = 0; i < columns; ++i) is_used[at + i] = true;
      }
      at += columns;
      line.remove_prefix(bytes);
    }
  }
  std::vector<size_t> starts = {0};
  for (size_t at = 2; at < is_used.size(); ++at) {
    if (is_used[at] && !is_used[at - 1] && !is_used[at - 2]) starts.push_back(at);
  }
  return starts;
}

std::string without_blanks_at_end(std::string_view cell) {
  return std::string(cell.substr(0, cell.find_last_not_of(' ') + 1));
}

TableRow cells_of(std::string_view line, const std::vector<size_t> &starts) {
  TableRow cells;
  for (size_t i = 0; i + 1 < starts.size(); ++i) {
    std::string_view cell = fitting(line, starts[i + 1] - starts[i]);
    cells.push_back(without_blanks_at_end(cell));
    line.remove_prefix(cell.size());
  }
  cells.push_back(without_blanks_at_end(line));
  return cells;
}

ListingSection section_of(std::string_view heading, Lines lines) {
  ListingSection section = {std::string(heading), {}, Rule::kNone};
  std::vector<size_t> starts;
  if (lines.size() > 1 && is_rule(lines[1])) {
    section.rule = Rule::kBelowFirst;
    starts = starts_in(lines[1]);
    lines.erase(lines.begin() + 1);
  } else {
    starts = common_starts(lines);
  }
  for (std::string_view line : lines) {
    TableRow &row = section.table.emplace_back(cells_of(line, starts));
    while (section.rule == Rule::kNone && row.size() > 1 && row.back().empty()) row.pop_back();
  }
  return section;
}

}  // namespace

std::string listing_text(const ListingContent &content) {
  std::string text = content.title + '\n' + std::string(display_width(content.title), '=') + '\n';
  for (const ListingSection &section : content.sections) {
    text += '\n' + section.heading + '\n' + table_text(section.table, section.rule);
  }
  return text;
}

std::optional<ListingContent> read_listing_text(std::string_view text) {
  std::optional<Lines> lines = lines_of(text);
  if (!lines || lines->size() < 2 || lines->front().empty()) return std::nullopt;
  ListingContent content = {std::string(lines->front()), {}};
  auto line = lines->begin() + 2;
  while (line != lines->end()) {
    if (!line->empty() || ++line == lines->end() || line->empty()) return std::nullopt;
    std::string_view heading = *line++;
    auto end = std::find(line, lines->end(), std::string_view());
    content.sections.push_back(section_of(heading, {line, end}));
    line = end;
  }
  if (listing_text(content) != text) return std::nullopt;
  return content;
}

}  // namespace olt
