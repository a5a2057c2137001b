/// Where replies hold the name of a listing's file.
#ifndef OLT_CAPTURE_TRACE_LISTINGS_H
#define OLT_CAPTURE_TRACE_LISTINGS_H

#include "capture/trace/packets.h"

#ifdef __cplusplus
extern "C" {
#endif

enum { kListingName = 32, kKeptPath = 256, kMaxListing = 4194304 };

/// The name in the reply, of at most kListingName bytes, with zeros after it if it is shorter; null
/// when there is none.
const char *listing_in(const struct exchange *exchange);

/// Writes the path under which the exchange's listing is kept in a folder, whose path has at most
/// 199 bytes.
void name_kept_listing(const struct exchange *exchange, const char *folder, char path[kKeptPath]);

#ifdef __cplusplus
}
#endif

#endif
