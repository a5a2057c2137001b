/// One call of an operation, with the caller's memory behind each argument.
#ifndef OLT_CLI_CALL_H
#define OLT_CLI_CALL_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "catalog/operation.h"
#include "oltmgmt.h"

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
  /// The bytes of a stream, VLAN ids or entries.
  void set_stream(size_t place, Bytes bytes) { values_[place].bytes = std::move(bytes); }
  void set_vlans(size_t place, std::vector<olt_vlan_node> vlans);
  /// Where the bytes of a buffer go instead of being shown.
  void set_file(size_t place, std::string path) { values_[place].file = std::move(path); }
  /// Writes over a part of a record, which must lie within it.
  void set_bytes(size_t place, size_t offset, ByteView bytes);

  /// Makes the call. @return the operation's result.
  int32_t make();

  uint32_t word(size_t place) const { return values_[place].word; }
  /// A text, record, name, buffer or block.
  ByteView bytes(size_t place) const;
  const std::string &file(size_t place) const { return values_[place].file; }

 private:
  struct Value {
    uint32_t word = 0;  ///< also the count of a list and the length of other bytes
    Bytes bytes;
    void *block = nullptr;
    std::vector<olt_vlan_node> nodes;
    olt_vlan_list vlans{};
    std::string file;
  };

  void add_slots(size_t place, std::vector<void *> &slots);
  void measure_outputs(int32_t result);

  const catalog::Operation &operation_;
  std::vector<Value> values_;
};

}  // namespace olt::cli

#endif
