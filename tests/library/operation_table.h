/// What an operation does, as one row of a table: the call, the exchanges that it makes and what it
/// does with memory. runner.h runs each row through all addresses and failures.
///
/// A row reads like this:
///
///   {.operation = "set_ont_port_downrate",
///    .call = [](Caller c) { return set_ont_port_downrate(c[0], c[1]); },  // its two blocks below
///    .exchanges = {{.type = 118, .request = "10+88 A0+12"}},  // one, to module 2, with 10 s
///    .blocks = {kept("ont", kWord, "10+88"), kept("rates", kWord, "A0+12")},
///    .request_block = {.out_of_memory = OutOfMemory::kMinusOne,  // the request is allocated
///                      .allocation_line = 3048,
///                      .release_line = 3056}}
///
/// Bytes are written as patterns:
///
///   0A0B     the bytes 0A 0B; blanks may stand anywhere between bytes
///   00*76    the byte 00, 76 times
///   10+172   172 bytes that count up: 10 11 12 ...
///   ??*4     4 bytes with any value
///   ~~*72    72 uninitialized bytes of a ___MALLOC block, as the test's allocator filled them
///   'name'   the characters, without a terminating zero
///   &1       the address of the caller's block 1
///   &=       the address of the block that the operation returned, or null
///   &-       an address that cannot be read or written
///   &1/12    an address, padded to 12 bytes
#ifndef OLT_TESTS_LIBRARY_OPERATION_TABLE_H
#define OLT_TESTS_LIBRARY_OPERATION_TABLE_H

#include <stddef.h>
#include <stdint.h>

#include "tests/library/byte_pattern.h"

namespace olt::test {

/// A caller's block as an argument; converts to whatever pointer the parameter is.
class BlockArgument {
 public:
  explicit BlockArgument(void *block) : block_(block) {}

  template <typename T>
  operator T *() const {
    return static_cast<T *>(block_);
  }

 private:
  void *block_;
};

/// The caller of an operation: c[0] is the first of the row's blocks.
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

/// Memory that the caller passes to the operation, and its bytes before and after the call.
struct CallerBlock {
  const char *name = nullptr;
  Alignment alignment = Alignment::kAny;
  const char *before = nullptr;
  /// After success; null: unchanged.
  const char *after = nullptr;
  /// After a failed exchange; null: unchanged.
  const char *after_failure = nullptr;
};

/// A block that the operation does not change.
constexpr CallerBlock kept(const char *name, Alignment alignment, const char *bytes) {
  return {.name = name, .alignment = alignment, .before = bytes};
}

/// A block that the operation changes if it succeeds.
constexpr CallerBlock filled(const char *name, Alignment alignment, const char *before,
                             const char *after) {
  return {.name = name, .alignment = alignment, .before = before, .after = after};
}

inline constexpr int kNoBlock = -1;

struct Exchange {
  /// 0: there is no such exchange.
  uint32_t type = 0;
  uint32_t module = 2;
  uint32_t timeout = 10;
  /// Null: no request body.
  const char *request = nullptr;
  /// Index of the caller's block that is the request itself; kNoBlock: the request is a copy.
  int sent_from = kNoBlock;
  /// Null: no reply is wanted.
  const char *reply = nullptr;
};

/// How an operation's result follows from the transport result and the status.
enum class Results : uint8_t {
  kCombined,  ///< transport result | status
  kMinusOne,  ///< -1 on any failure
  kAlwaysZero,
  kTransportElseStatus,  ///< the transport result unless it is 0; the status starts as 0xFFFF
  kRefused,              ///< -1, and nothing is sent
};

/// What an operation does if ___MALLOC returns null.
enum class OutOfMemory : uint8_t {
  kAllocatesNothing,
  kMinusOne,        ///< returns -1
  kZero,            ///< returns 0
  kZeroAndRelease,  ///< calls ___FREE with null, returns 0
  kUntested,        ///< writes to the null pointer if there is anything to write
  kNullAnswer,      ///< returns 0 and a null block
};

/// A request that is built in a ___MALLOC block.
struct RequestBlock {
  OutOfMemory out_of_memory = OutOfMemory::kAllocatesNothing;
  /// Line numbers; 0: any.
  int allocation_line = 0;
  int release_line = 0;
  int log_line = 0;
  /// Null: a failed allocation is not logged.
  const char *log = nullptr;
};

/// A ___MALLOC block that the operation returns to its caller.
struct ReturnedBlock {
  OutOfMemory out_of_memory = OutOfMemory::kAllocatesNothing;
  const char *bytes = nullptr;
  /// Whether the block is as long as the reply, however long that is.
  bool whole_reply = false;
};

struct Row {
  const char *operation = nullptr;
  /// Distinguishes the rows of one operation.
  const char *variant = nullptr;
  int32_t (*call)(Caller) = nullptr;
  Exchange exchanges[2] = {};
  CallerBlock blocks[kMaxBlocks] = {};
  Results results = Results::kCombined;
  bool releases_reply = true;
  RequestBlock request_block = {};
  ReturnedBlock returned_block = {};
};

struct Table {
  const Row *rows;
  size_t count;
};

/// All tables; one without rows ends them.
const Table *all_tables();

}  // namespace olt::test

#endif
