/// One call of an operation, with the caller's memory behind each argument.
#ifndef OLT_CLI_CALL_H
#define OLT_CLI_CALL_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "catalog/operation.h"
#include "cli/bytes_text.h"

namespace olt::cli {

class Call {
 public:
  /// All arguments start as zeros and empty texts.
  explicit Call(const catalog::Operation &operation);
  Call(const Call &) = delete;
  Call &operator=(const Call &) = delete;
  ~Call();

  const catalog::Operation &operation() const { return operation_; }

  // Arguments go by their place in the operation's list.

  void set_word(size_t place, uint32_t word) { values_[place].word = word; }
  void set_text(size_t place, std::string_view text);
  void set_stream(size_t place, Bytes bytes) { values_[place].bytes = std::move(bytes); }
  /// Writes over a part of a record, which must lie within it.
  void set_bytes(size_t place, size_t offset, ByteView bytes);

  /// Makes the call. @return the operation's result.
  int32_t make();

  uint32_t word(size_t place) const { return values_[place].word; }
  /// A record, name or answer block.
  ByteView bytes(size_t place) const;

 private:
  struct Value {
    uint32_t word = 0;  ///< also the length of a stream or block
    Bytes bytes;
    void *block = nullptr;
  };

  const catalog::Operation &operation_;
  std::vector<Value> values_;
};

}  // namespace olt::cli

#endif
