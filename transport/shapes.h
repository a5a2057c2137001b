/// The shapes of operations. Each shape makes one exchange and returns its result; an operation
/// builds its request, passes it to a shape and returns what the shape returns.
///
///   post         sends a request; no reply record is needed
///   fetch        sends a request and copies a range of the reply to the caller
///   fetch_over   the same, over the caller's own request record
///   ask          sends a request; the operation reads and releases the reply itself
///
/// Shapes that allocate are in block.h, those for a common record in ont_target.h and
/// interface_request.h.
///
/// Functions that are not inline take the caller's arguments first, so that these stay in the
/// registers in which they arrived, and the operation's own constants last. The constants fit into
/// the remaining registers, so that most operations compile to a tail call.
#ifndef OLT_TRANSPORT_SHAPES_H
#define OLT_TRANSPORT_SHAPES_H

#include <stdint.h>
#include <string.h>

#include "transport/request.h"

namespace olt {

/// The bytes of a reply that the caller gets, in one register.
struct Range {
  constexpr Range(uint8_t offset, uint8_t length) : word(uint32_t{offset} << 8 | length) {}

  uint32_t offset() const { return word >> 8; }
  uint32_t length() const { return word & 0xFF; }

  uint32_t word;
};

/// The file name in replies to listings of the OLT.
inline constexpr Range kResultName{48, 32};
/// The file name in replies to log and memory listings and to all ONT listings.
inline constexpr Range kLeadingName{0, 32};

/// The length of a request and the bytes of the reply that the caller gets, in one register.
struct Extent {
  constexpr Extent(uint8_t sent, Range taken) : word(taken.word << 8 | sent) {}

  uint32_t sent() const { return word & 0xFF; }
  Range taken() const {
    return {static_cast<uint8_t>(word >> 16), static_cast<uint8_t>(word >> 8)};
  }

  uint32_t word;
};

/// Turns any failure into -1.
OLT_INLINE int32_t flatten(int32_t result) {
  return result != 0 ? -1 : 0;
}

int32_t post(const void *request, uint32_t length, Route route);

OLT_INLINE int32_t post(Route route) {
  return post(nullptr, 0, route);
}

/// Sends the caller's record itself, not a copy.
template <typename Record>
OLT_INLINE int32_t post(Route route, const Record &record) {
  return post(&record, sizeof record, route);
}

int32_t post_value(uint32_t value, Route route);

int32_t fetch(const void *request, void *out, Extent extent, Route route);

/// Sends a request without a body and copies a range of the reply.
OLT_INLINE int32_t fetch_range(Route route, Range range, void *out) {
  return fetch(nullptr, out, {0, range}, route);
}

/// Sends the record and copies a range of the reply.
template <typename Record>
OLT_INLINE int32_t fetch_range(Route route, const Record &record, Range range, void *out) {
  return fetch(&record, out, {sizeof record, range}, route);
}

/// Fills the caller's record or word from the start of the reply.
template <typename Out>
OLT_INLINE int32_t fetch(Route route, Out *out) {
  return fetch_range(route, {0, sizeof(Out)}, out);
}

/// Sends the record and fills another record or word from the start of the reply.
template <typename Record, typename Out>
OLT_INLINE int32_t fetch(Route route, const Record &record, Out *out) {
  return fetch_range(route, record, {0, sizeof(Out)}, out);
}

/// Sends the caller's record and copies the reply back over it.
template <typename Record>
OLT_INLINE int32_t fetch_over(Route route, Record &record) {
  return fetch(route, record, &record);
}

/// Sends the caller's record and copies one of its fields back from the same place in the reply.
template <typename Record, typename Field>
OLT_INLINE int32_t fetch_over(Route route, const Record &record, Field &field) {
  auto offset = reinterpret_cast<uintptr_t>(&field) - reinterpret_cast<uintptr_t>(&record);
  return fetch_range(route, record, {static_cast<uint8_t>(offset), sizeof field}, &field);
}

/// Sends a request for a reply. @return transport result | status; if it is 0, the operation must
/// release the reply.
template <typename Destination>
OLT_INLINE int32_t ask(const void *request, uint32_t length, const Destination &to, Reply &reply) {
  return request_with_reply(request, length, to, reply) | reply.status;
}

/// Copies a range of the reply.
inline void take(const Reply &reply, Range range, void *out) {
  memcpy(out, static_cast<const char *>(reply.data) + range.offset(), range.length());
}

/// A word at any address.
struct [[gnu::packed, gnu::may_alias]] Word {
  uint32_t value;
};

/// A word of the reply.
inline uint32_t word_at(const Reply &reply, uint32_t offset) {
  return reinterpret_cast<const Word *>(static_cast<const char *>(reply.data) + offset)->value;
}

}  // namespace olt

#endif
