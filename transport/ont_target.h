/// Requests that begin with the caller's ONT target record.
#ifndef OLT_TRANSPORT_ONT_TARGET_H
#define OLT_TRANSPORT_ONT_TARGET_H

#include "oltmgmt.h"
#include "transport/shapes.h"

namespace olt {

inline constexpr uint32_t kTargetLength = sizeof(olt_ont_target);

/// A block that begins with a copy of the target and goes on with the tail; what is behind the
/// tail is as the allocator left it. Null when there is no memory.
char *open_target(const olt_ont_target *target, const void *tail, uint32_t tail_length,
                  uint32_t length, CallSite site);

/// Sends the target with a tail behind it. @return -1 when there is no memory.
int32_t post_target(const olt_ont_target *target, const void *tail, uint32_t tail_length,
                    Route route, CallSite site);

/// The same with one word behind the target.
int32_t post_target_word(const olt_ont_target *target, uint32_t word, Route route, CallSite site);

/// As post_target, but when there is no memory nothing is sent, a null block is released, and the
/// caller is told of success.
int32_t post_target_if_memory(const olt_ont_target *target, const void *tail, uint32_t tail_length,
                              Route route, CallSite site);

/// Has a listing of the ONT written and gives the file's name.
inline int32_t fetch_ont_listing(Route route, const olt_ont_target *target, char *name) {
  return fetch_range(route, *target, kLeadingName, name);
}

/// Reads the row that the target names: the reply's head goes back over the target, which then
/// names the row that was read, and what follows goes to out.
int32_t fetch_row(olt_ont_target *target, void *out, uint8_t length, Route route);

}  // namespace olt

#endif
