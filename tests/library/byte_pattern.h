/// Bytes as the tables write them down.
///
///   0A0B     the bytes 0A 0B; blanks may stand anywhere between bytes
///   00*76    the byte 76 times
///   10+172   172 bytes, each one more than the one before: 10 11 12 ...
///   ??*4     4 bytes that may have any value
///   ~~*72    72 bytes as ___MALLOC left them
///   'name'   the characters, without a terminator
///   &1       the address of the caller's block 1
///   &=       the address of the block that the operation handed over, or null
///   &-       an address that cannot be read or written
///   &1/12    the same, filled up to 12 bytes
#ifndef OLT_TESTS_LIBRARY_BYTE_PATTERN_H
#define OLT_TESTS_LIBRARY_BYTE_PATTERN_H

#include <stddef.h>
#include <stdint.h>

namespace olt::test {

inline constexpr size_t kMaxBlocks = 6;

/// What the addresses in a pattern stand for.
struct Addresses {
  const void *blocks[kMaxBlocks] = {};
  const void *handed_over = nullptr;
};

/// What a fresh block of ___MALLOC holds at the offset.
constexpr uint8_t fresh_byte(size_t offset) {
  return static_cast<uint8_t>(0xB7 ^ (offset * 29));
}

class BytePattern {
 public:
  /// A null text has no bytes. A text that is no pattern ends the program.
  BytePattern(const char *text, const Addresses &addresses);
  ~BytePattern();
  BytePattern(const BytePattern &) = delete;
  BytePattern &operator=(const BytePattern &) = delete;

  size_t size() const { return size_; }
  const uint8_t *data() const { return bytes_; }

  /// Offset of the first byte, of size() many, that differs; size() when none does.
  size_t mismatch(const uint8_t *bytes) const;

 private:
  size_t size_;
  uint8_t *bytes_;
  bool *any_value_;
};

}  // namespace olt::test

#endif
