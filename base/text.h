/// Bytes as text.
#ifndef OLT_BASE_TEXT_H
#define OLT_BASE_TEXT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace olt {

using Bytes = std::vector<uint8_t>;
using ByteView = std::span<const uint8_t>;

/// "02005e10".
std::string to_hex(ByteView bytes);
/// "02 00 5e 10".
std::string to_spaced_hex(ByteView bytes);
/// Reads both forms; nothing when the text is anything but pairs of hex digits.
std::optional<Bytes> from_hex(std::string_view text);

/// Bytes that must not be shown.
struct Hidden {
  size_t offset = 0;
  size_t length = 0;
  size_t stride = 0;  ///< from the start of one such range to the next; 0: there is only one

  bool covers(size_t at) const {
    return at >= offset && (stride == 0 ? at - offset : (at - offset) % stride) < length;
  }
};

/// 16 bytes a line: offset, bytes, characters. Each line begins with two blanks.
std::string hex_dump(ByteView bytes, std::span<const Hidden> hidden = {});

/// The bytes of a dump; nothing when the text is none.
std::optional<Bytes> from_hex_dump(std::string_view dump);

/// The bytes as characters, those that are not printable ASCII as dots.
std::string characters(ByteView bytes);

/// The text with control characters, those that change the direction or the line of text, and bytes
/// that are not UTF-8, written as \xNN, so that it cannot command or mislead a terminal.
std::string printable(std::string_view text);
/// The same, but bytes beyond ASCII are also escaped: each byte of the result takes one column.
std::string printable_ascii(std::string_view text);

/// The text in a field, up to its zero or the field's end.
std::string text_in(ByteView field);
ByteView as_bytes(std::string_view text);

/// Any bytes as UTF-8, one character per byte, so that JSON can hold them.
std::string bytes_to_utf8(std::string_view bytes);
/// The reverse; nothing when a character stands for no byte.
std::optional<std::string> utf8_to_bytes(std::string_view text);

/// Whether the byte is one of a UTF-8 character, but not its first.
bool continues_character(char byte);

/// "1 VLAN", "2 VLANs", "2 addresses".
std::string counted(size_t count, std::string_view noun);

}  // namespace olt

#endif
