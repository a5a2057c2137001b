#include "tests/library/byte_pattern.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "tests/library/guarded_memory.h"

namespace olt::test {

namespace {

constexpr uint8_t kPadding = 0x5D;

class Parser {
 public:
  Parser(const char *text, const Addresses &addresses) : text_(text), addresses_(addresses) {}

  /// @return the number of bytes; they are stored unless bytes is null.
  size_t parse(uint8_t *bytes, bool *any_value) {
    bytes_ = bytes;
    any_value_ = any_value;
    size_ = 0;
    for (at_ = text_; *at_ != '\0';) {
      if (*at_ == ' ') {
        ++at_;
      } else if (*at_ == '\'') {
        parse_characters();
      } else if (*at_ == '&') {
        parse_address();
      } else {
        parse_byte();
      }
    }
    return size_;
  }

 private:
  [[noreturn]] void fail() const {
    static_cast<void>(fprintf(stderr, "not a byte pattern from >%s< on: >%s<\n", at_, text_));
    abort();
  }

  void put(uint8_t byte, bool any_value = false) {
    if (bytes_ != nullptr) {
      bytes_[size_] = byte;
      any_value_[size_] = any_value;
    }
    ++size_;
  }

  size_t parse_number() {
    char *end = nullptr;
    size_t number = strtoul(at_, &end, 10);
    if (end == at_) fail();
    at_ = end;
    return number;
  }

  void parse_characters() {
    const char *end = strchr(at_ + 1, '\'');
    if (end == nullptr) fail();
    while (++at_ != end) put(static_cast<uint8_t>(*at_));
    ++at_;
  }

  void parse_address() {
    const void *address = addresses_.returned_block;
    if (at_[1] >= '0' && at_[1] < static_cast<char>('0' + kMaxBlocks)) {
      address = addresses_.blocks[at_[1] - '0'];
    } else if (at_[1] == '-') {
      address = GuardedMemory::nowhere();
    } else if (at_[1] != '=') {
      fail();
    }
    at_ += 2;
    uint8_t raw[sizeof address];
    memcpy(raw, &address, sizeof raw);
    for (uint8_t byte : raw) put(byte);
    if (*at_ != '/') return;
    ++at_;
    for (size_t width = parse_number(); width > sizeof raw; --width) put(kPadding);
  }

  uint8_t parse_hex() {
    char digits[3] = {at_[0], at_[0] == '\0' ? '\0' : at_[1], '\0'};
    char *end = nullptr;
    auto byte = static_cast<uint8_t>(strtoul(digits, &end, 16));
    if (end != digits + 2) fail();
    return byte;
  }

  void parse_byte() {
    bool any_value = strncmp(at_, "??", 2) == 0;
    bool fresh = strncmp(at_, "~~", 2) == 0;
    auto byte = any_value || fresh ? uint8_t{0} : parse_hex();
    at_ += 2;
    char repetition = *at_;
    size_t count = 1;
    if (repetition == '*' || repetition == '+') {
      ++at_;
      count = parse_number();
    }
    for (; count != 0; --count) {
      put(fresh ? fresh_byte(size_) : byte, any_value);
      if (repetition == '+') ++byte;
    }
  }

  const char *text_;
  const Addresses &addresses_;
  const char *at_ = nullptr;
  uint8_t *bytes_ = nullptr;
  bool *any_value_ = nullptr;
  size_t size_ = 0;
};

}  // namespace

BytePattern::BytePattern(const char *text, const Addresses &addresses) {
  Parser parser(text == nullptr ? "" : text, addresses);
  size_ = parser.parse(nullptr, nullptr);
  bytes_ = static_cast<uint8_t *>(malloc(size_ + 1));
  any_value_ = static_cast<bool *>(malloc(size_ + 1));
  parser.parse(bytes_, any_value_);
}

BytePattern::~BytePattern() {
  free(bytes_);
  free(any_value_);
}

size_t BytePattern::mismatch(const uint8_t *bytes) const {
  size_t offset = 0;
  while (offset != size_ && (any_value_[offset] || bytes_[offset] == bytes[offset])) ++offset;
  return offset;
}

}  // namespace olt::test
