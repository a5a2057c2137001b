/// One call of an operation, with the memory of each argument.
#ifndef OLT_CLI_CALL_CALL_H
#define OLT_CLI_CALL_CALL_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/text.h"
#include "catalog/operation.h"
#include "cli/call/exchanges.h"
#include "oltmgmt.h"

namespace olt::cli {

class Call {
 public:
  /// All arguments start as zeros and empty texts.
  explicit Call(const catalog::Operation &operation);
  /// The same arguments. The other one must not have been made.
  Call(const Call &other);
  Call &operator=(const Call &) = delete;
  ~Call();

  const catalog::Operation &operation() const { return operation_; }

  // A place is an argument's index in the operation.

  /// Writes over a part of a value, which must lie within it; those bytes are given from then on.
  void set_bytes(size_t place, size_t offset, ByteView bytes);
  /// Whether all of these bytes of a value are given.
  bool is_given(size_t place, size_t offset, size_t count) const;
  bool is_any_given(size_t place, size_t offset, size_t count) const;
  /// Writes over those of a value's bytes that are not given.
  void fill_in(size_t place, size_t offset, ByteView bytes);
  /// The bytes of a stream, VLAN ids or entries.
  void set_stream(size_t place, Bytes bytes) { values_[place].bytes = std::move(bytes); }
  void set_vlans(size_t place, std::vector<olt_vlan_node> vlans);
  /// The file that the bytes of a buffer are written to.
  void set_file(size_t place, std::string path) { values_[place].file = std::move(path); }

  /// Makes the call.
  /// @return the operation's result
  int32_t make();

  /// Why the call failed: the result, or, of a result that does not say, that of its exchange.
  int32_t reason(int32_t result) const;

  /// Bytes in the reply of the call's last exchange; 0 without one.
  uint32_t reply_length() const { return exchange_ ? exchange_->reply_length : 0; }

  /// A value, buffer or block.
  ByteView bytes(size_t place) const;
  const std::string &file(size_t place) const { return values_[place].file; }

 private:
  struct Value {
    Bytes bytes;
    std::vector<bool> given;  ///< of the first bytes; the others are not
    uint32_t length = 0;      ///< bytes of a stream, block or buffer; items of a list
    void *block = nullptr;
    std::vector<olt_vlan_node> nodes;
    olt_vlan_list vlans{};
    std::string file;
  };

  void add_slots(size_t place, std::vector<void *> &slots);
  void measure_outputs(int32_t result);

  const catalog::Operation &operation_;
  std::vector<Value> values_;
  std::optional<ExchangeEnd> exchange_;
};

}  // namespace olt::cli

#endif
