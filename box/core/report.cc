#include "box/core/report.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/text.h"

namespace olt::box {

void Report::section(std::string heading, std::vector<std::string> columns) {
  Rule rule = columns.empty() ? Rule::kNone : Rule::kBelowFirst;
  content_.sections.push_back({std::move(heading), {}, rule});
  if (rule == Rule::kBelowFirst) row(std::move(columns));
}

void Report::row(std::vector<std::string> cells) {
  content_.sections.back().table.push_back(std::move(cells));
}

void Report::dump(std::span<const uint8_t> bytes) {
  for (size_t offset = 0; offset < bytes.size(); offset += 16) {
    auto part = bytes.subspan(offset, std::min<size_t>(16, bytes.size() - offset));
    row({fmt::format("{:04x}", offset), to_hex(part), characters(part)});
  }
}

}  // namespace olt::box
