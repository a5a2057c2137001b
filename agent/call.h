/// One call of an operation by its row in the catalog. Blocks until the module answers.
#ifndef OLT_AGENT_CALL_H
#define OLT_AGENT_CALL_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/text.h"
#include "catalog/operation.h"

namespace olt::agent {

class Call {
 public:
  /// All arguments start as zeros. They are values; the last one may be a block.
  explicit Call(const catalog::Operation &operation);
  Call(const Call &) = delete;
  Call &operator=(const Call &) = delete;
  ~Call();

  /// Writes into an argument, as much of it as there is room for.
  void set_bytes(size_t place, size_t offset, ByteView bytes);
  void set_word(size_t place, size_t offset, uint32_t word);

  /// @return the operation's result
  int32_t make();

  /// Where the calls of this thread say which module they ask; null: nowhere.
  static thread_local std::atomic<uint8_t> *asked_module;

  ByteView bytes(size_t place) const;

 private:
  struct Value {
    Bytes bytes;
    void *block = nullptr;
  };

  const catalog::Operation &operation_;
  std::vector<Value> values_;
};

}  // namespace olt::agent

#endif
