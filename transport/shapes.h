/// The shapes that operations come in. Each makes one exchange and composes the result; an
/// operation builds its request, hands it to its shape and returns.
///
///   post         a request of which only the acceptance matters
///   fetch        a request for a reply, of which a range is copied to the caller
///   fetch_over   the same, copied over the caller's own request record
///   ask          a request for a reply that the operation takes apart itself
///
/// Those that allocate are in block.h, those that begin with a common record in ont_target.h and
/// interface_request.h.
///
/// Functions out of line take what an operation gets from its caller first and what it adds last:
/// the caller's arguments then stay in the registers in which they came. What it adds is constant
/// and fits into the registers that are left, so that the operation ends with a jump.
#ifndef OLT_TRANSPORT_SHAPES_H
#define OLT_TRANSPORT_SHAPES_H

#include <stdint.h>
#include <string.h>

#include "transport/request.h"

namespace olt {

/// Which bytes of a reply the caller gets. In one register.
struct Range {
  constexpr Range(uint8_t offset, uint8_t length) : word(uint32_t{offset} << 8 | length) {}

  uint32_t offset() const { return word >> 8; }
  uint32_t length() const { return word & 0xFF; }

  uint32_t word;
};

/// File name in the replies to listings of the OLT side.
inline constexpr Range kResultName{48, 32};
/// File name in the replies of the log and memory listings and of all ONT listings.
inline constexpr Range kLeadingName{0, 32};

/// How much of a request is sent, and which bytes of the reply the caller gets. In one register.
struct Extent {
  constexpr Extent(uint8_t sent, Range taken) : word(taken.word << 8 | sent) {}

  uint32_t sent() const { return word & 0xFF; }
  Range taken() const {
    return {static_cast<uint8_t>(word >> 16), static_cast<uint8_t>(word >> 8)};
  }

  uint32_t word;
};

/// Failure of any kind as -1.
OLT_INLINE int32_t flatten(int32_t result) {
  return result != 0 ? -1 : 0;
}

int32_t post(const void *request, uint32_t length, Route route);

OLT_INLINE int32_t post(Route route) {
  return post(nullptr, 0, route);
}

/// Sends the record from where it lies.
template <typename Record>
OLT_INLINE int32_t post(Route route, const Record &record) {
  return post(&record, sizeof record, route);
}

int32_t post_value(uint32_t value, Route route);

int32_t fetch(const void *request, void *out, Extent extent, Route route);

/// Copies a range of the reply to a request without a body.
OLT_INLINE int32_t fetch_range(Route route, Range range, void *out) {
  return fetch(nullptr, out, {0, range}, route);
}

/// Sends the record and copies a range of the reply.
template <typename Record>
OLT_INLINE int32_t fetch_range(Route route, const Record &record, Range range, void *out) {
  return fetch(&record, out, {sizeof record, range}, route);
}

/// Fills the caller's record, or word, from the start of the reply.
template <typename Out>
OLT_INLINE int32_t fetch(Route route, Out *out) {
  return fetch_range(route, {0, sizeof(Out)}, out);
}

/// Sends the record and fills the caller's other one, or a word, from the start of the reply.
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

/// Asks for a reply. @return transport result | status; when it is 0, the reply is to be read and
/// released.
template <typename Destination>
OLT_INLINE int32_t ask(const void *request, uint32_t length, const Destination &to, Reply &reply) {
  return request_with_reply(request, length, to, reply) | reply.status;
}

/// Copies bytes of the reply.
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
