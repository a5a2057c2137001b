#include "cli/text/items.h"

#include <fmt/format.h>

#include <algorithm>

namespace olt::cli {

namespace {

std::string_view trimmed(std::string_view text) {
  size_t begin = text.find_first_not_of(" \t\r");
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
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

}  // namespace olt::cli
