/// The shapes that operations come in. Each makes one exchange and composes the result; an
/// operation builds its request, hands it to its shape and returns.
///
///   post         a request of which only the acceptance matters
///   fetch        a request for a reply, of which a range is copied to the caller
///   fetch_over   the same, copied over the caller's own request record
///   fetch_copy   a request for a reply that is handed over in a block of its own
#ifndef OLT_TRANSPORT_SHAPES_H
#define OLT_TRANSPORT_SHAPES_H

#include <stdint.h>

#include "transport/request.h"

namespace olt {

/// Where in a reply the bytes lie that the caller gets.
struct Range {
  uint16_t offset;
  uint16_t length;
};

/// File name in the replies to listings of the OLT side.
inline constexpr Range kResultName{48, 32};
/// File name in the replies of the log and memory listings and of all ONT listings.
inline constexpr Range kLeadingName{0, 32};

inline int32_t post(Route route) {
  return request_no_reply(route, nullptr, 0);
}

/// Sends the caller's record from where it lies.
template <typename Record>
int32_t post(Route route, const Record *record) {
  return request_no_reply(route, record, sizeof(Record));
}

int32_t post_value(Route route, uint32_t value);

int32_t fetch(Route route, const void *request, uint32_t length, Range range, void *out);

inline int32_t fetch(Route route, Range range, void *out) {
  return fetch(route, nullptr, 0, range, out);
}

/// Fills the caller's record, or word, from the start of the reply.
template <typename Record>
int32_t fetch(Route route, Record *out) {
  return fetch(route, {0, sizeof(Record)}, out);
}

/// Sends the caller's record and copies the reply back over it.
template <typename Record>
int32_t fetch_over(Route route, Record *record) {
  return fetch(route, record, sizeof(Record), {0, sizeof(Record)}, record);
}

/// Sends the caller's record and copies one of its fields back from the same place in the reply.
template <typename Record, typename Field>
int32_t fetch_over(Route route, const Record *record, Field *field) {
  auto offset = reinterpret_cast<uintptr_t>(field) - reinterpret_cast<uintptr_t>(record);
  return fetch(route, record, sizeof(Record), {static_cast<uint16_t>(offset), sizeof(Field)},
               field);
}

/// An exported operation that allocates, as the platform's allocator wants it named.
struct CallSite {
  const char *operation;
  int line;
};

/// Hands the whole reply over in a block that the caller releases. The length goes out first; the
/// allocation is not tested.
int32_t fetch_copy(CallSite site, Route route, const void *request, uint32_t length, void **answer,
                   uint32_t *answer_length);

}  // namespace olt

#endif
