/// CBOR, as much of it as state needs: unsigned numbers, texts, byte strings, booleans, and lists
/// and maps without a count. A tag marks a value as secret.
#ifndef OLT_BOX_STATE_CBOR_H
#define OLT_BOX_STATE_CBOR_H

#include <cstdint>
#include <string>
#include <string_view>

#include "base/text.h"

namespace olt::box {

class CborWriter {
 public:
  void number(uint64_t value) { head(0, value); }
  void bytes(ByteView value);
  void text(std::string_view value);
  void flag(bool value) { data_ += static_cast<char>(value ? 0xF5 : 0xF4); }
  void begin_list() { data_ += '\x9F'; }
  void begin_map() { data_ += '\xBF'; }
  void end() { data_ += '\xFF'; }
  /// The value that follows is secret.
  void secret();

  std::string take() { return std::move(data_); }

 private:
  void head(uint8_t major, uint64_t value);

  std::string data_;
};

/// Reads values one after the other. Texts and bytes are views of the data. What is not written by
/// a CborWriter throws BadInput.
class CborReader {
 public:
  enum class Kind { kNumber, kBytes, kText, kFlag, kList, kMap, kEnd };

  struct Value {
    Kind kind = Kind::kEnd;
    bool is_secret = false;
    uint64_t number = 0;    ///< of a number; 1 of a flag that is set
    std::string_view data;  ///< of a text or bytes
  };

  explicit CborReader(std::string_view data, size_t position = 0)
      : data_(data), position_(position) {}

  /// Of a list or a map, only its beginning.
  Value next();
  /// Passes over the next value, whole.
  void skip();
  bool at_end() const { return position_ == data_.size(); }
  size_t position() const { return position_; }

 private:
  uint8_t byte();
  uint64_t argument(uint8_t head);

  std::string_view data_;
  size_t position_;
};

}  // namespace olt::box

#endif
