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

bool covers(std::span<const Hidden> hidden, size_t at) {
  return std::any_of(hidden.begin(), hidden.end(),
                     [at](const Hidden &range) { return range.covers(at); });
}

void append_line(std::string &dump, ByteView bytes, size_t begin, std::span<const Hidden> hidden) {
  size_t end = std::min(begin + kLine, bytes.size());
  std::string shown;
  fmt::format_to(std::back_inserter(dump), "  {:04x} ", begin);
  for (size_t at = begin; at < end; ++at) {
    if (covers(hidden, at)) {
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

struct CodePoint {
  size_t length = 0;  ///< in bytes; 0 when there is none
  uint32_t code = 0;
};

/// The UTF-8 character at the front.
CodePoint character_at_front(std::string_view text) {
  struct Form {
    uint8_t lead, mask;
    uint32_t min;
  };
  constexpr Form kForms[] = {
      {0x00, 0x80, 0}, {0xC0, 0xE0, 0x80}, {0xE0, 0xF0, 0x800}, {0xF0, 0xF8, 0x10000}};
  auto lead = static_cast<uint8_t>(text[0]);
  for (size_t more = 0; more < std::size(kForms); ++more) {
    const Form &form = kForms[more];
    if ((lead & form.mask) != form.lead) continue;
    if (text.size() <= more) return {};
    uint32_t code = lead & static_cast<uint8_t>(~form.mask);
    for (char c : text.substr(1, more)) {
      if (!continues_character(c)) return {};
      code = code << 6 | (static_cast<uint8_t>(c) & 0x3F);
    }
    bool is_surrogate = code >= 0xD800 && code < 0xE000;
    if (code < form.min || code > 0x10FFFF || is_surrogate) return {};
    return {more + 1, code};
  }
  return {};
}

/// Control characters, separators of lines, and marks that turn the direction of text.
bool commands_terminal(uint32_t code) {
  constexpr struct {
    uint32_t first, last;
  } kRanges[] = {{0x00, 0x1F},     {0x7F, 0x9F},     {0x061C, 0x061C},
                 {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};
  return std::any_of(std::begin(kRanges), std::end(kRanges), [code](const auto &range) {
    return code >= range.first && code <= range.last;
  });
}

}  // namespace

bool continues_character(char byte) {
  return (static_cast<uint8_t>(byte) & 0xC0) == 0x80;
}

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

std::string hex_dump(ByteView bytes, std::span<const Hidden> hidden) {
  std::string dump;
  for (size_t begin = 0; begin < bytes.size(); begin += kLine) {
    append_line(dump, bytes, begin, hidden);
  }
  return dump;
}

std::optional<Bytes> from_hex_dump(std::string_view dump) {
  Bytes bytes;
  while (!dump.empty()) {
    std::string_view line = dump.substr(0, dump.find('\n'));
    dump.remove_prefix(std::min(line.size() + 1, dump.size()));
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    size_t begin = line.find("  ");
    if (begin == std::string_view::npos) return std::nullopt;
    line.remove_prefix(begin + 2);
    std::optional<Bytes> row = from_hex(line.substr(0, line.find("  ")));
    if (!row) return std::nullopt;
    bytes.insert(bytes.end(), row->begin(), row->end());
  }
  return bytes;
}

std::string characters(ByteView bytes) {
  std::string text;
  for (uint8_t byte : bytes) text += is_plain(byte) ? static_cast<char>(byte) : '.';
  return text;
}

std::string printable(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    auto [length, code] = character_at_front(text);
    std::string_view bytes = text.substr(0, std::max<size_t>(length, 1));
    if (length > 0 && !commands_terminal(code)) {
      shown += bytes;
    } else {
      for (char byte : bytes) shown += escaped(byte);
    }
    text.remove_prefix(bytes.size());
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
  if (count == 1) return fmt::format("1 {}", noun);
  if (noun.ends_with('y')) return fmt::format("{} {}ies", count, noun.substr(0, noun.size() - 1));
  return fmt::format("{} {}{}", count, noun, noun.ends_with('s') ? "es" : "s");
}

}  // namespace olt
