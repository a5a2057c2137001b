#include "cli/bytes_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <system_error>
#include <utility>

namespace olt::cli {

namespace {

constexpr size_t kLine = 16;

bool is_plain(uint8_t byte) {
  return byte >= 0x20 && byte < 0x7F;
}

void append_line(std::string &dump, ByteView bytes, size_t begin, Hidden hidden) {
  size_t end = std::min(begin + kLine, bytes.size());
  std::string characters;
  fmt::format_to(std::back_inserter(dump), "  {:04x} ", begin);
  for (size_t at = begin; at < end; ++at) {
    if (hidden.covers(at)) {
      dump += " **";
      characters += '*';
    } else {
      fmt::format_to(std::back_inserter(dump), " {:02x}", bytes[at]);
      characters += is_plain(bytes[at]) ? static_cast<char>(bytes[at]) : '.';
    }
  }
  dump.append(3 * (begin + kLine - end), ' ');
  dump += "  ";
  dump += characters;
  dump += '\n';
}

/// Bytes of the control character at the beginning; 0 when there is none. Of those beyond ASCII,
/// which are two bytes in UTF-8, one begins a terminal's commands as escape does.
size_t control_at_front(std::string_view text) {
  auto first = static_cast<uint8_t>(text[0]);
  if (first < 0x20 || first == 0x7F) return 1;
  if (first != 0xC2 || text.size() < 2) return 0;
  auto second = static_cast<uint8_t>(text[1]);
  return second >= 0x80 && second < 0xA0 ? 2 : 0;
}

}  // namespace

std::optional<Bytes> parse_hex(std::string_view text) {
  Bytes bytes;
  const char *at = text.data();
  const char *end = at + text.size();
  while (at != end) {
    if (*at == ' ') {
      ++at;
      continue;
    }
    uint8_t byte = 0;
    if (end - at < 2) return std::nullopt;
    auto [stop, error] = std::from_chars(at, at + 2, byte, 16);
    if (error != std::errc{} || stop != at + 2) return std::nullopt;
    bytes.push_back(byte);
    at = stop;
  }
  return bytes;
}

std::optional<Bytes> parse_mac(std::string_view text) {
  constexpr size_t kLength = 17;
  if (text.size() != kLength) return std::nullopt;
  std::string digits(text);
  for (size_t at = 2; at < kLength; at += 3) {
    if (std::exchange(digits[at], ' ') != ':') return std::nullopt;
  }
  std::optional<Bytes> bytes = parse_hex(digits);
  return bytes && bytes->size() == 6 ? bytes : std::nullopt;
}

std::string plain_hex(ByteView bytes) {
  return fmt::format("{:02x}", fmt::join(bytes, ""));
}

std::string spaced_hex(ByteView bytes) {
  return fmt::format("{:02x}", fmt::join(bytes, " "));
}

std::string hex_dump(ByteView bytes, Hidden hidden) {
  std::string dump;
  for (size_t begin = 0; begin < bytes.size(); begin += kLine) {
    append_line(dump, bytes, begin, hidden);
  }
  return dump;
}

std::string printable(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    size_t control = control_at_front(text);
    for (char character : text.substr(0, control)) {
      fmt::format_to(std::back_inserter(shown), "\\x{:02x}", static_cast<uint8_t>(character));
    }
    if (control == 0) shown += text[0];
    text.remove_prefix(std::max<size_t>(control, 1));
  }
  return shown;
}

}  // namespace olt::cli
