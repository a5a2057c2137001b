#include "tests/support/page.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "tests/support/folder.h"

namespace olt::test {

namespace {

/// Of "| a | b |": "a" and "b".
Cells cells_of(const std::string &line) {
  Cells cells = split(line.substr(1, line.rfind('|') - 1), "|");
  for (std::string &cell : cells) {
    size_t last = cell.find_last_not_of(' ');
    cell = last == std::string::npos ? "" : cell.substr(1, last);
  }
  return cells;
}

}  // namespace

std::vector<std::string> split(std::string_view text, std::string_view separator) {
  std::vector<std::string> parts;
  for (size_t end = text.find(separator); end != std::string_view::npos;
       end = text.find(separator)) {
    parts.emplace_back(text.substr(0, end));
    text.remove_prefix(end + separator.size());
  }
  parts.emplace_back(text);
  return parts;
}

std::vector<Cells> table_in_page(const std::string &page, std::string_view heading) {
  std::istringstream lines(read_file(OLT_DOCS "/" + page));
  std::vector<Cells> rows;
  bool inside = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(heading)) {
      inside = true;
    } else if (inside && !line.starts_with("|")) {
      break;
    } else if (inside && !line.starts_with("|---")) {
      rows.push_back(cells_of(line));
    }
  }
  if (rows.empty()) throw std::invalid_argument(page + " has no table " + std::string(heading));
  return rows;
}

std::vector<std::string> without(const std::vector<std::string> &lines,
                                 const std::vector<std::string> &others) {
  std::vector<std::string> rest;
  std::copy_if(lines.begin(), lines.end(), std::back_inserter(rest), [&](const auto &line) {
    return std::find(others.begin(), others.end(), line) == others.end();
  });
  return rest;
}

}  // namespace olt::test
