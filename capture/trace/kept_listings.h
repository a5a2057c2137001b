/// Copies of the files that replies name.
#ifndef OLT_CAPTURE_TRACE_KEPT_LISTINGS_H
#define OLT_CAPTURE_TRACE_KEPT_LISTINGS_H

#include "capture/trace/packets.h"

/// Reads OLT_CAPTURE_FILES, and where names without a path are.
void set_up_kept_listings(void);

/// Copies the listing that the reply names, if it names one. The first time that it cannot,
/// complains.
void keep_listing(const struct exchange *exchange);

#endif
