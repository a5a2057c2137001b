/// Bytes as people write and read them.
#ifndef OLT_CLI_BYTES_TEXT_H
#define OLT_CLI_BYTES_TEXT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace olt::cli {

using Bytes = std::vector<uint8_t>;
using ByteView = std::span<const uint8_t>;

/// Bytes that must not be shown.
struct Hidden {
  size_t offset = 0;
  size_t length = 0;
  size_t stride = 0;  ///< from one such range to the next; 0 when there is one

  bool covers(size_t at) const {
    return at >= offset && (stride == 0 ? at - offset : (at - offset) % stride) < length;
  }
};

/// Reads "02005e10" or, grouped, "02 00 5e 10".
std::optional<Bytes> parse_hex(std::string_view text);

/// Reads "02:00:5e:10:00:01".
std::optional<Bytes> parse_mac(std::string_view text);

/// Writes "02005e10".
std::string plain_hex(ByteView bytes);

/// Writes "02 00 5e 10".
std::string spaced_hex(ByteView bytes);

/// Writes 16 bytes a line: offset, bytes, characters. Each line begins with two blanks.
std::string hex_dump(ByteView bytes, Hidden hidden = {});

/// The text with anything that could move a terminal's cursor written as \xNN.
std::string printable(std::string_view text);

}  // namespace olt::cli

#endif
