#include "box/text.h"

#include <fmt/format.h>

#include <ctime>

namespace olt::box {

namespace {

int digit_value(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

std::string utc(TimePoint time, bool with_fraction) {
  auto whole = std::chrono::floor<std::chrono::seconds>(time);
  time_t seconds = std::chrono::system_clock::to_time_t(whole);
  tm parts = {};
  gmtime_r(&seconds, &parts);
  std::string text =
      fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}", parts.tm_year + 1900, parts.tm_mon + 1,
                  parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
  if (with_fraction) {
    auto fraction = std::chrono::duration_cast<std::chrono::microseconds>(time - whole);
    text += fmt::format(".{:06}", fraction.count());
  }
  return text + 'Z';
}

}  // namespace

std::string to_hex(std::span<const uint8_t> bytes) {
  std::string text;
  text.reserve(bytes.size() * 2);
  for (uint8_t byte : bytes) {
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 15];
  }
  return text;
}

std::optional<std::vector<uint8_t>> from_hex(std::string_view text) {
  if (text.size() % 2 != 0) return std::nullopt;
  std::vector<uint8_t> bytes;
  bytes.reserve(text.size() / 2);
  for (size_t i = 0; i < text.size(); i += 2) {
    int high = digit_value(text[i]);
    int low = digit_value(text[i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes.push_back(static_cast<uint8_t>(high << 4 | low));
  }
  return bytes;
}

std::string printable(std::string_view text) {
  std::string line;
  for (char c : text) {
    if (c >= ' ' && c <= '~') {
      line += c;
    } else {
      line += fmt::format("\\x{:02x}", static_cast<uint8_t>(c));
    }
  }
  return line;
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

std::string utc_seconds(TimePoint time) {
  return utc(time, false);
}

std::string utc_microseconds(TimePoint time) {
  return utc(time, true);
}

}  // namespace olt::box
