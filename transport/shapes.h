/// The shapes that operations come in. Each makes one exchange and composes the result; an
/// operation builds its request, hands it to its shape and returns.
///
///   post         a request of which only the acceptance matters
///   fetch        a request for a reply, of which a range is copied to the caller
///   fetch_keep   the same, but the reply is not released
///   fetch_over   the same as fetch, copied over the caller's own request record
///   fetch_copy   a request for a reply that is handed over in a block of its own
///   ask          a request for a reply that the operation takes apart itself
///
/// Functions out of line take what an operation gets from its caller first and what it adds last:
/// the caller's arguments then stay in the registers in which they came.
#ifndef OLT_TRANSPORT_SHAPES_H
#define OLT_TRANSPORT_SHAPES_H

#include <stdint.h>

#include "transport/request.h"

namespace olt {

/// Which bytes of a reply the caller gets.
struct Range {
  uint8_t offset;
  uint8_t length;
};

/// File name in the replies to listings of the OLT side.
inline constexpr Range kResultName{48, 32};
/// File name in the replies of the log and memory listings and of all ONT listings.
inline constexpr Range kLeadingName{0, 32};

/// The lengths of an exchange: what is sent, and what of the reply is copied. In one register.
struct Extent {
  uint16_t sent;
  Range taken;
};

/// Where one operation allocates and releases, as the platform's allocator wants it named. The
/// lines mean something where users of the allocator rely on them; elsewhere they are any.
struct CallSite {
  const char *operation;
  uint16_t allocation_line = 0;
  uint16_t release_line = 0;
};

/// Failure of any kind as -1.
inline int32_t flatten(int32_t result) {
  return result != 0 ? -1 : 0;
}

inline int32_t post(Route route) {
  return request_no_reply(nullptr, 0, route);
}

/// Sends the record from where it lies.
template <typename Record>
int32_t post(Route route, const Record &record) {
  return request_no_reply(&record, sizeof record, route);
}

int32_t post_value(uint32_t value, Route route);

int32_t fetch(const void *request, void *out, Extent extent, Route route);

/// Copies a range of the reply to a request without a body.
inline int32_t fetch_range(Route route, Range range, void *out) {
  return fetch(nullptr, out, {0, range}, route);
}

/// Sends the record and copies a range of the reply.
template <typename Record>
int32_t fetch_range(Route route, const Record &record, Range range, void *out) {
  return fetch(&record, out, {sizeof record, range}, route);
}

/// Fills the caller's record, or word, from the start of the reply.
template <typename Out>
int32_t fetch(Route route, Out *out) {
  return fetch_range(route, {0, sizeof(Out)}, out);
}

/// Sends the record and fills the caller's other one, or a word, from the start of the reply.
template <typename Record, typename Out>
int32_t fetch(Route route, const Record &record, Out *out) {
  return fetch_range(route, record, {0, sizeof(Out)}, out);
}

int32_t fetch_keep(const void *request, void *out, Extent extent, Route route);

/// Sends the caller's record and copies the reply back over it.
template <typename Record>
int32_t fetch_over(Route route, Record &record) {
  return fetch(route, record, &record);
}

/// Sends the caller's record and copies one of its fields back from the same place in the reply.
template <typename Record, typename Field>
int32_t fetch_over(Route route, const Record &record, Field &field) {
  auto offset = reinterpret_cast<uintptr_t>(&field) - reinterpret_cast<uintptr_t>(&record);
  return fetch_range(route, record, {static_cast<uint8_t>(offset), sizeof field}, &field);
}

/// Hands the whole reply over in a block that the caller releases. The length goes out first; the
/// allocation is not tested.
int32_t fetch_copy(const void *request, uint32_t length, void **answer, uint32_t *answer_length,
                   const char *operation, Route route);

/// @return transport result | status; when it is 0, the reply is to be read and released.
int32_t ask(const void *request, uint32_t length, Route route, Reply &reply);

/// Copies a range of the reply.
void take(const Reply &reply, Range range, void *out);

uint32_t word_at(const Reply &reply, uint32_t offset);

/// Hands the first length bytes of the reply over in a block that the caller releases, or a null
/// pointer when there is no memory, and releases the reply. @return 0.
int32_t hand_over(const Reply &reply, uint32_t length, void **out, const char *operation);

// Requests in a block of the platform's allocator.

/// A block as the allocator left it, or null.
void *open_block(uint32_t length, CallSite site);

/// Sends the block and releases it.
int32_t post_block(void *block, uint32_t length, Route route, CallSite site);

/// Sends the block for a reply and releases it before the outcome is looked at.
int32_t ask_block(void *block, uint32_t length, Route route, CallSite site, Reply &reply);

/// Writes the log line of an operation that found no memory.
void log_no_memory(const char *message, int line, CallSite site);

}  // namespace olt

#endif
