/// Reads the byte patterns that operation_table.h explains.
#ifndef OLT_TESTS_LIBRARY_BYTE_PATTERN_H
#define OLT_TESTS_LIBRARY_BYTE_PATTERN_H

#include <stddef.h>
#include <stdint.h>

namespace olt::test {

inline constexpr size_t kMaxBlocks = 6;

/// The addresses that a pattern can refer to.
struct Addresses {
  const void *blocks[kMaxBlocks] = {};
  const void *returned_block = nullptr;
};

/// The byte at an offset of a new ___MALLOC block.
constexpr uint8_t fresh_byte(size_t offset) {
  return static_cast<uint8_t>(0xB7 ^ (offset * 29));
}

class BytePattern {
 public:
  /// A null text has no bytes. Anything that is not a pattern aborts the program.
  BytePattern(const char *text, const Addresses &addresses);
  ~BytePattern();
  BytePattern(const BytePattern &) = delete;
  BytePattern &operator=(const BytePattern &) = delete;

  size_t size() const { return size_; }
  const uint8_t *data() const { return bytes_; }

  /// Offset of the first of size() bytes that does not match; size() if all match.
  size_t mismatch(const uint8_t *bytes) const;

 private:
  size_t size_;
  uint8_t *bytes_;
  bool *any_value_;
};

}  // namespace olt::test

#endif
