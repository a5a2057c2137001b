/// Literal bytes, as tests write requests, replies and files.
#ifndef OLT_TESTS_SUPPORT_BYTES_H
#define OLT_TESTS_SUPPORT_BYTES_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace olt::test {

using Bytes = std::vector<uint8_t>;

/// The bytes of "01 00 ff"; blanks are optional. Throws std::invalid_argument on anything else.
Bytes hex(std::string_view digits);

/// Little-endian, 4 bytes.
Bytes word(uint32_t value);
/// Little-endian, 2 bytes.
Bytes half_word(uint16_t value);
/// The little-endian word at an offset. Throws std::out_of_range when the bytes end before it does.
uint32_t word_at(std::span<const uint8_t> bytes, size_t offset);

/// The characters without a terminating zero.
Bytes text(std::string_view characters);
std::string characters(std::span<const uint8_t> bytes);

/// size zero bytes with each field copied to its offset. Throws std::out_of_range when a field does
/// not fit.
Bytes record(size_t size, std::initializer_list<std::pair<size_t, Bytes>> fields = {});

/// size bytes that count up from first: 41 42 43 ...
Bytes counting(size_t size, uint8_t first);

/// size bytes without a short period: unlike counting bytes, they differ after a move by 256.
Bytes scattered(size_t size);

/// The bytes from offset begin up to, not including, offset end. Throws std::out_of_range when the
/// bytes end before.
Bytes slice(std::span<const uint8_t> bytes, size_t begin, size_t end);

/// Whether the part occurs in the text.
bool holds(std::string_view text, std::string_view part);
/// How often it does.
size_t count_of(std::string_view part, std::string_view text);

}  // namespace olt::test

#endif
