/// Requests that begin with the caller's olt_ont_target record.
#ifndef OLT_TRANSPORT_ONT_TARGET_H
#define OLT_TRANSPORT_ONT_TARGET_H

#include "oltmgmt.h"
#include "transport/block.h"

namespace olt {

inline constexpr uint32_t kTargetLength = sizeof(olt_ont_target);

/// A block that holds a copy of ont, then the tail; bytes after the tail are uninitialized. Null if
/// there is no memory.
char *open_target(const olt_ont_target *ont, const void *tail, uint32_t tail_length,
                  uint32_t length, const Call &call);

/// Sends ont, followed by the tail.
int32_t post_target(const olt_ont_target *ont, const void *tail, uint32_t tail_length,
                    const Call &call);

/// The same, followed by a record of the caller's or by one word.
template <typename Record>
OLT_INLINE int32_t post_target(const olt_ont_target *ont, const Record &record, const Call &call) {
  return post_target(ont, &record, sizeof record, call);
}
int32_t post_target_word(const olt_ont_target *ont, uint32_t word, const Call &call);

/// Requests a listing of the ONT and returns the file's name.
OLT_INLINE int32_t fetch_ont_listing(Route route, const olt_ont_target *ont, char *name) {
  return fetch_range(route, *ont, kLeadingName, name);
}

/// Reads the row that ont selects. The head of the reply overwrites ont, which then identifies the
/// row that was read; the bytes after it are copied to out.
int32_t fetch_row(olt_ont_target *ont, void *out, uint32_t length, Route route);

template <typename Out>
OLT_INLINE int32_t fetch_row(Route route, olt_ont_target *ont, Out *out) {
  return fetch_row(ont, out, sizeof *out, route);
}

}  // namespace olt

#endif
