#include "tests/support/bytes.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>

namespace olt::test {

namespace {

uint8_t digit_value(char digit) {
  if (digit >= '0' && digit <= '9') return static_cast<uint8_t>(digit - '0');
  if (digit >= 'a' && digit <= 'f') return static_cast<uint8_t>(digit - 'a' + 10);
  if (digit >= 'A' && digit <= 'F') return static_cast<uint8_t>(digit - 'A' + 10);
  throw std::invalid_argument(std::string("not a hex digit: ") + digit);
}

}  // namespace

Bytes hex(std::string_view digits) {
  Bytes bytes;
  bool high = true;
  for (char digit : digits) {
    if (digit == ' ') continue;
    if (high) bytes.push_back(0);
    bytes.back() = static_cast<uint8_t>(bytes.back() << 4 | digit_value(digit));
    high = !high;
  }
  if (!high) throw std::invalid_argument("half a byte in: " + std::string(digits));
  return bytes;
}

Bytes word(uint32_t value) {
  return {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8),
          static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 24)};
}

Bytes half_word(uint16_t value) {
  return {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8)};
}

uint32_t word_at(std::span<const uint8_t> bytes, size_t offset) {
  const Bytes found = slice(bytes, offset, offset + 4);
  return found[0] | uint32_t{found[1]} << 8 | uint32_t{found[2]} << 16 | uint32_t{found[3]} << 24;
}

Bytes text(std::string_view characters) {
  return {characters.begin(), characters.end()};
}

std::string characters(std::span<const uint8_t> bytes) {
  return {bytes.begin(), bytes.end()};
}

Bytes record(size_t size, std::initializer_list<std::pair<size_t, Bytes>> fields) {
  Bytes bytes(size);
  for (const auto &[offset, field] : fields) {
    if (offset > size || field.size() > size - offset) throw std::out_of_range("field of a record");
    std::copy(field.begin(), field.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
  }
  return bytes;
}

Bytes counting(size_t size, uint8_t first) {
  Bytes bytes(size);
  std::iota(bytes.begin(), bytes.end(), first);
  return bytes;
}

Bytes scattered(size_t size) {
  Bytes bytes(size);
  for (size_t i = 0; i != size; ++i) bytes[i] = static_cast<uint8_t>((i + 1) * 2654435761u >> 24);
  return bytes;
}

Bytes slice(std::span<const uint8_t> bytes, size_t begin, size_t end) {
  if (begin > end || end > bytes.size()) throw std::out_of_range("slice of bytes");
  const std::span<const uint8_t> part = bytes.subspan(begin, end - begin);
  return {part.begin(), part.end()};
}

bool holds(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

size_t count_of(std::string_view part, std::string_view text) {
  size_t count = 0;
  for (size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++count;
  return count;
}

}  // namespace olt::test
