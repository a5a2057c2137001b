/// What an operation does, as one row of a table: the call, the exchanges that it makes and what it
/// does with memory. Bytes are written as byte_pattern.h says.
#ifndef OLT_TESTS_LIBRARY_OPERATION_TABLE_H
#define OLT_TESTS_LIBRARY_OPERATION_TABLE_H

#include <stddef.h>
#include <stdint.h>

#include "tests/library/byte_pattern.h"

namespace olt::test {

/// A caller's block as an argument, of whatever type the parameter asks for.
class BlockArgument {
 public:
  explicit BlockArgument(void *block) : block_(block) {}

  template <typename T>
  operator T *() const {  // NOLINT(google-explicit-constructor)
    return static_cast<T *>(block_);
  }

 private:
  void *block_;
};

/// The caller of an operation: c[0] is its first block.
class Caller {
 public:
  explicit Caller(const Addresses &addresses) : addresses_(addresses) {}

  BlockArgument operator[](size_t index) const {
    return BlockArgument(const_cast<void *>(addresses_.blocks[index]));
  }

 private:
  const Addresses &addresses_;
};

enum class Alignment : uint8_t { kAny = 1, kHalfWord = 2, kWord = 4, kPointer = alignof(void *) };

/// Memory that the caller hands to the operation.
struct CallerBlock {
  const char *name = nullptr;
  Alignment alignment = Alignment::kAny;
  const char *before = nullptr;
  /// After success; null: as before.
  const char *after = nullptr;
  /// After a failed exchange; null: as before.
  const char *after_failure = nullptr;
};

inline constexpr int kNoBlock = -1;

struct Exchange {
  /// 0: there is no such exchange.
  uint32_t type = 0;
  uint32_t module = 2;
  uint32_t timeout = 10;
  /// Null: no request body.
  const char *request = nullptr;
  /// Number of the caller's block that is sent from where it lies.
  int sent_from = kNoBlock;
  /// Null: no reply is wanted.
  const char *reply = nullptr;
};

enum class Results : uint8_t {
  kCombined,  ///< transport result | status
  kFlat,      ///< -1 for any failure
  kAlwaysZero,
  kAccount,  ///< the transport result alone, else the status, which starts as 0xFFFF
  kRefused,  ///< -1 before anything is sent
};

/// What an operation does when ___MALLOC returns null.
enum class OutOfMemory : uint8_t {
  kAllocatesNothing,
  kMinusOne,        ///< returns -1
  kZero,            ///< returns 0
  kZeroAndRelease,  ///< calls ___FREE with null, returns 0
  kUntested,        ///< writes through the null pointer if there is anything to write
  kNullAnswer,      ///< hands over null, returns 0
};

/// A request that is built in a block of ___MALLOC.
struct RequestBlock {
  OutOfMemory out_of_memory = OutOfMemory::kAllocatesNothing;
  /// Line numbers that matter; 0: any.
  int allocation_line = 0;
  int release_line = 0;
  int log_line = 0;
  /// Null: a failed allocation is not logged.
  const char *log = nullptr;
};

/// A block of ___MALLOC that the caller gets.
struct HandedOver {
  OutOfMemory out_of_memory = OutOfMemory::kAllocatesNothing;
  const char *bytes = nullptr;
  /// Is the block as long as the reply, however long that is?
  bool whole_reply = false;
};

struct Row {
  const char *operation = nullptr;
  /// Tells rows of one operation apart.
  const char *variant = nullptr;
  int32_t (*call)(Caller) = nullptr;
  Exchange exchanges[2] = {};
  CallerBlock blocks[kMaxBlocks] = {};
  Results results = Results::kCombined;
  bool releases_reply = true;
  RequestBlock request_block = {};
  HandedOver handed_over = {};
};

struct Table {
  const Row *rows;
  size_t count;
};

/// All tables; one without rows ends them.
const Table *all_tables();

}  // namespace olt::test

#endif
