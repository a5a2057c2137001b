/// Requests and answers in blocks from the platform's allocator.
#ifndef OLT_TRANSPORT_BLOCK_H
#define OLT_TRANSPORT_BLOCK_H

#include <stddef.h>
#include <stdint.h>

#include "transport/shapes.h"

namespace olt {

/// What post_target does if the request cannot be allocated.
enum class NoMemory : uint8_t {
  kFail,     ///< returns -1
  kSucceed,  ///< sends nothing, releases the null block and returns 0
};

/// Everything constant about an operation that allocates: where its request goes, and the lines and
/// the name that it passes to the allocator. Line numbers matter only where users of the allocator
/// rely on them; elsewhere any value will do.
struct Call {
  uint32_t message_type() const { return type_byte; }
  uint32_t module() const { return module_byte; }
  uint32_t timeout() const { return timeout_byte; }
  /// The name that follows in NamedCall.
  const char *operation() const { return reinterpret_cast<const char *>(this + 1); }

  uint8_t type_byte;
  uint8_t module_byte;
  uint8_t timeout_byte;
  NoMemory no_memory;
  uint16_t allocation_line;
  uint16_t release_line;
};

/// A call followed by the operation's name. There is no pointer to the name: that would take a
/// relocation, and with it a writable section.
template <size_t kSize>
struct NamedCall {
  constexpr NamedCall(NoMemory no_memory, const char (&operation)[kSize], Route route,
                      uint16_t allocation_line = 0, uint16_t release_line = 0)
      : call{static_cast<uint8_t>(route.message_type()),
             static_cast<uint8_t>(route.module()),
             static_cast<uint8_t>(route.timeout()),
             no_memory,
             allocation_line,
             release_line} {
    static_assert(offsetof(NamedCall, name) == sizeof(Call), "Call::operation() reads it there");
    for (size_t i = 0; i < kSize; ++i) name[i] = operation[i];
  }

  Call call;
  char name[kSize] = {};
};

/// A template argument is an object of the whole program, not of one file: its address is one load.
template <NamedCall kNamed>
inline constexpr const Call &kCall = kNamed.call;  // NOLINT(bugprone-dynamic-static-initializers)

/// The Call of the operation in which it stands: OLT_CALL(route) or
/// OLT_CALL(route, allocation line, release line).
#define OLT_CALL(...) \
  (::olt::kCall<::olt::NamedCall(::olt::NoMemory::kFail, __func__, __VA_ARGS__)>)

/// The same, for post_target: the operation reports success if its request cannot be allocated.
#define OLT_CALL_IF_MEMORY(...) \
  (::olt::kCall<::olt::NamedCall(::olt::NoMemory::kSucceed, __func__, __VA_ARGS__)>)

/// An uninitialized block, or null.
OLT_INLINE void *open_block(uint32_t length, const Call &call) {
  return ___MALLOC(length, call.operation(), call.allocation_line);
}

/// Sends the block and releases it. @return -1 if the block is null.
int32_t post_block(void *block, uint32_t length, const Call &call);

/// Sends the block and copies a range of the reply to the caller. The block is released before the
/// result is checked.
int32_t fetch_block(void *block, uint32_t length, void *out, Range range, const Call &call);

/// Logs that the request could not be allocated. @return -1.
int32_t log_no_memory(const char *message, const Call &call);

/// Returns a copy of the whole reply in a block that the caller releases. Stores the length first;
/// the allocation is not checked.
int32_t fetch_copy(const void *request, uint32_t length, void **answer, uint32_t *answer_length,
                   const Call &call);

/// Returns a copy of the first length bytes of the reply in a block that the caller releases, or
/// null if there is no memory. Releases the reply. @return 0.
int32_t hand_over(const Reply &reply, uint32_t length, void **out, const Call &call);

}  // namespace olt

#endif
