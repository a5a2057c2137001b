#include "fuzz/target.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace olt::fuzz {

namespace {

/// C1 control characters are two bytes in UTF-8, of which the first is this one.
constexpr char kC1Lead = '\xC2';

bool is_control(char character) {
  auto byte = static_cast<uint8_t>(character);
  return byte < 0x20 || byte == 0x7F;
}

bool is_shown(std::string_view line) {
  for (size_t i = 0; i < line.size(); ++i) {
    if (is_control(line[i])) return false;
    bool is_c1 = line[i] == kC1Lead && i + 1 < line.size() &&
                 static_cast<uint8_t>(line[i + 1]) >= 0x80 &&
                 static_cast<uint8_t>(line[i + 1]) < 0xA0;
    if (is_c1) return false;
  }
  return true;
}

}  // namespace

void require(bool holds, std::string_view rule, std::string_view broken_by) {
  if (holds) return;
  std::string text = "broken rule: " + std::string(rule) + '\n';
  if (!broken_by.empty()) text += "by: " + std::string(broken_by) + '\n';
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
  std::abort();
}

void require_line(std::string_view line) {
  require(!line.empty(), "a message is not empty");
  require(is_shown(line), "a message is one line that a terminal can show", line);
}

void require_lines(std::string_view text) {
  require(text.empty() || text.back() == '\n', "lines end with a newline", text);
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find('\n'));
    require(is_shown(line), "a terminal can show each line", line);
    text.remove_prefix(line.size() + 1);
  }
}

uint8_t Input::u8() {
  std::span<const uint8_t> taken = bytes(1);
  return taken.empty() ? 0 : taken[0];
}

uint16_t Input::u16() {
  uint8_t low = u8();
  return static_cast<uint16_t>(low | u8() << 8);
}

uint32_t Input::u32() {
  uint16_t low = u16();
  return low | uint32_t{u16()} << 16;
}

std::span<const uint8_t> Input::bytes(size_t max) {
  std::span<const uint8_t> taken = data_.first(std::min(max, data_.size()));
  data_ = data_.subspan(taken.size());
  return taken;
}

std::string_view Input::text() {
  std::span<const uint8_t> all = rest();
  return {reinterpret_cast<const char *>(all.data()), all.size()};
}

}  // namespace olt::fuzz
