/// Requests that begin with the caller's ONT target record.
#ifndef OLT_TRANSPORT_ONT_TARGET_H
#define OLT_TRANSPORT_ONT_TARGET_H

#include "oltmgmt.h"
#include "transport/block.h"

namespace olt {

inline constexpr uint32_t kTargetLength = sizeof(olt_ont_target);

/// A block that begins with a copy of the target and goes on with the tail; what is behind the
/// tail is as the allocator left it. Null when there is no memory.
char *open_target(const olt_ont_target *target, const void *tail, uint32_t tail_length,
                  uint32_t length, const Call &call);

/// Sends the target with a tail behind it.
int32_t post_target(const olt_ont_target *target, const void *tail, uint32_t tail_length,
                    const Call &call);

/// The same with the caller's record, or one word, behind the target.
template <typename Record>
OLT_INLINE int32_t post_target(const olt_ont_target *target, const Record &record,
                               const Call &call) {
  return post_target(target, &record, sizeof record, call);
}
int32_t post_target_word(const olt_ont_target *target, uint32_t word, const Call &call);

/// Has a listing of the ONT written and gives the file's name.
OLT_INLINE int32_t fetch_ont_listing(Route route, const olt_ont_target *target, char *name) {
  return fetch_range(route, *target, kLeadingName, name);
}

/// Reads the row that the target names: the reply's head goes back over the target, which then
/// names the row that was read, and what follows goes to out.
int32_t fetch_row(olt_ont_target *target, void *out, uint32_t length, Route route);

template <typename Out>
OLT_INLINE int32_t fetch_row(Route route, olt_ont_target *target, Out *out) {
  return fetch_row(target, out, sizeof *out, route);
}

}  // namespace olt

#endif
