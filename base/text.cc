#include "base/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <system_error>

namespace olt {

namespace {

constexpr size_t kLine = 16;

bool is_plain(uint8_t byte) {
  return byte >= 0x20 && byte < 0x7F;
}

std::string escaped(char character) {
  return fmt::format("\\x{:02x}", static_cast<uint8_t>(character));
}

void append_line(std::string &dump, ByteView bytes, size_t begin, Hidden hidden) {
  size_t end = std::min(begin + kLine, bytes.size());
  std::string shown;
  fmt::format_to(std::back_inserter(dump), "  {:04x} ", begin);
  for (size_t at = begin; at < end; ++at) {
    if (hidden.covers(at)) {
      dump += " **";
      shown += '*';
    } else {
      fmt::format_to(std::back_inserter(dump), " {:02x}", bytes[at]);
      shown += characters(bytes.subspan(at, 1));
    }
  }
  dump.append(3 * (begin + kLine - end), ' ');
  dump += "  ";
  dump += shown;
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

std::string to_hex(ByteView bytes) {
  std::string text;
  text.reserve(bytes.size() * 2);
  for (uint8_t byte : bytes) {
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 15];
  }
  return text;
}

std::string to_spaced_hex(ByteView bytes) {
  return fmt::format("{:02x}", fmt::join(bytes, " "));
}

std::optional<Bytes> from_hex(std::string_view text) {
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

std::string hex_dump(ByteView bytes, Hidden hidden) {
  std::string dump;
  for (size_t begin = 0; begin < bytes.size(); begin += kLine) {
    append_line(dump, bytes, begin, hidden);
  }
  return dump;
}

std::string characters(ByteView bytes) {
  std::string text;
  for (uint8_t byte : bytes) text += is_plain(byte) ? static_cast<char>(byte) : '.';
  return text;
}

std::string printable(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    size_t control = control_at_front(text);
    for (char character : text.substr(0, control)) shown += escaped(character);
    if (control == 0) shown += text[0];
    text.remove_prefix(std::max<size_t>(control, 1));
  }
  return shown;
}

std::string printable_ascii(std::string_view text) {
  std::string line;
  for (char c : text) {
    if (is_plain(static_cast<uint8_t>(c))) {
      line += c;
    } else {
      line += escaped(c);
    }
  }
  return line;
}

std::string text_in(ByteView field) {
  return {field.begin(), std::find(field.begin(), field.end(), 0)};
}

ByteView as_bytes(std::string_view text) {
  return {reinterpret_cast<const uint8_t *>(text.data()), text.size()};
}

std::string bytes_to_utf8(std::string_view bytes) {
  std::string text;
  for (char c : bytes) {
    auto byte = static_cast<uint8_t>(c);
    if (byte < 0x80) {
      text += c;
    } else {
      text += static_cast<char>(0xC0 | byte >> 6);
      text += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return text;
}

std::optional<std::string> utf8_to_bytes(std::string_view text) {
  std::string bytes;
  for (size_t i = 0; i < text.size(); ++i) {
    auto lead = static_cast<uint8_t>(text[i]);
    if (lead < 0x80) {
      bytes += text[i];
    } else if ((lead == 0xC2 || lead == 0xC3) && i + 1 < text.size()) {
      bytes += static_cast<char>((lead & 3) << 6 | (text[++i] & 0x3F));
    } else {
      return std::nullopt;
    }
  }
  return bytes;
}

std::string counted(size_t count, std::string_view noun) {
  return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

}  // namespace olt
