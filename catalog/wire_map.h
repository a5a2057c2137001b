/// Requests and replies byte by byte: what each byte of a request is, and where each byte of a
/// reply goes.
#ifndef OLT_CATALOG_WIRE_MAP_H
#define OLT_CATALOG_WIRE_MAP_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace olt::catalog {

struct Field;

enum class Origin : uint8_t {
  kArgument,  ///< bytes of an argument; in a reply, those that the operation copies to it
  kConstant,  ///< a word that the operation sets
  kZeros,
  kAny,  ///< in a request, what memory held; in a reply, what the operation does not read
};

/// Bytes of a message with one origin.
struct Part {
  /// The width of bytes that no other part follows: as many as the argument or the reply has.
  static constexpr uint16_t kToTheEnd = 0;

  Origin origin = Origin::kAny;
  uint16_t offset = 0;
  uint16_t width = 0;
  uint8_t argument = 0;          ///< its place in the operation
  uint16_t from = 0;             ///< the first of the argument's bytes
  uint32_t constant = 0;         ///< little-endian
  bool is_text = false;          ///< the argument's bytes before its zero
  bool with_zero = false;        ///< and the zero
  Origin rest = Origin::kZeros;  ///< of the part, after the text

  constexpr bool reaches_the_end() const { return width == kToTheEnd; }
};

/// The parts follow each other without gaps from offset 0.
struct Message {
  static constexpr size_t kMaxParts = 12;

  std::array<Part, kMaxParts> part_room{};
  size_t part_count = 0;
  /// In a reply: the word of the argument that must be 0 for the reply to be read; else null.
  const char *read_if_zero = nullptr;
  /// The fields of the record that the message is or begins with; else the arguments' own hold.
  std::span<const Field> record{};
  std::string_view record_type{};  ///< its C type; empty when the public header has none

  constexpr std::span<const Part> parts() const { return {part_room.data(), part_count}; }

  /// Bytes before a part that reaches the end.
  constexpr uint32_t fixed_length() const {
    uint32_t length = 0;
    for (const Part &part : parts()) length += part.width;
    return length;
  }

  constexpr void append(Part part) {
    if (part_count == kMaxParts) throw "a message of too many parts";
    if (part_count > 0 && part_room[part_count - 1].reaches_the_end()) throw "bytes after the end";
    part_room[part_count++] = part;
  }
};

}  // namespace olt::catalog

#endif
