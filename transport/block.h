/// Requests and answers in a block of the platform's allocator.
#ifndef OLT_TRANSPORT_BLOCK_H
#define OLT_TRANSPORT_BLOCK_H

#include <stddef.h>
#include <stdint.h>

#include "transport/shapes.h"

namespace olt {

/// What post_target does when there is no memory; the other shapes have one way each.
enum class NoMemory : uint8_t {
  kFail,     ///< returns -1
  kSucceed,  ///< sends nothing, releases the null block and tells of success
};

/// Whom an operation that allocates sends to, and where it allocates and releases, as the
/// platform's allocator wants it named. The lines mean something where users of the allocator rely
/// on them; elsewhere they are any. The operation's name lies behind.
struct Call {
  uint32_t message_type() const { return type_byte; }
  uint32_t module() const { return module_byte; }
  uint32_t timeout() const { return timeout_byte; }
  const char *operation() const { return reinterpret_cast<const char *>(this + 1); }

  uint8_t type_byte;
  uint8_t module_byte;
  uint8_t timeout_byte;
  NoMemory no_memory;
  uint16_t allocation_line;
  uint16_t release_line;
};

/// A call with its name: NamedCall(118, __func__, 3048, 3056).
template <size_t kSize>
struct NamedCall {
  constexpr NamedCall(Route route, const char (&operation)[kSize], uint16_t allocation_line = 0,
                      uint16_t release_line = 0)
      : call{static_cast<uint8_t>(route.message_type()),
             static_cast<uint8_t>(route.module()),
             static_cast<uint8_t>(route.timeout()),
             NoMemory::kFail,
             allocation_line,
             release_line} {
    for (size_t i = 0; i < kSize; ++i) name[i] = operation[i];
  }

  constexpr NamedCall otherwise(NoMemory no_memory) const {
    NamedCall changed = *this;
    changed.call.no_memory = no_memory;
    return changed;
  }

  Call call;
  char name[kSize] = {};
};

/// The call as a constant of the program, so that one register holds all of it.
template <NamedCall kNamed>
inline constexpr const Call &kCall = kNamed.call;  // NOLINT(bugprone-dynamic-static-initializers)

/// The same for post_target, but when there is no memory nothing is sent, a null block is released,
/// and the caller is told of success.
template <NamedCall kNamed>
inline constexpr const Call &kCallIfMemory =  // NOLINT(bugprone-dynamic-static-initializers)
    kCall<kNamed.otherwise(NoMemory::kSucceed)>;

/// A block as the allocator left it, or null.
OLT_INLINE void *open_block(uint32_t length, const Call &call) {
  return ___MALLOC(length, call.operation(), call.allocation_line);
}

/// Sends the block and releases it. @return -1 when there is none.
int32_t post_block(void *block, uint32_t length, const Call &call);

/// Sends the block for a reply, of which a range is copied to the caller. The block is released
/// before the outcome is looked at.
int32_t fetch_block(void *block, uint32_t length, void *out, Range range, const Call &call);

/// Writes the log line of an operation that found no memory, by the line of its allocation.
/// @return -1.
int32_t log_no_memory(const char *message, const Call &call);

/// Hands the whole reply over in a block that the caller releases. The length goes out first; the
/// allocation is not tested.
int32_t fetch_copy(const void *request, uint32_t length, void **answer, uint32_t *answer_length,
                   const Call &call);

/// Hands the first length bytes of the reply over in a block that the caller releases, or a null
/// pointer when there is no memory, and releases the reply. @return 0.
int32_t hand_over(const Reply &reply, uint32_t length, void **out, const Call &call);

}  // namespace olt

#endif
