#include "capture/trace/listings.h"

#include <stddef.h>
#include <stdio.h>

static const struct {
  uint8_t message_type, offset;
} kNames[] = {
#include "capture/trace/listing_rows.inc"
};

const char *listing_in(const struct exchange *exchange) {
  for (size_t i = 0; i < sizeof kNames / sizeof *kNames; i++) {
    if (kNames[i].message_type != exchange->message_type) continue;
    const char *name = (const char *)exchange->reply + kNames[i].offset;
    bool is_whole = exchange->reply_length >= (uint32_t)kNames[i].offset + kListingName;
    return is_whole && *name != 0 ? name : NULL;
  }
  return NULL;
}

void name_kept_listing(const struct exchange *exchange, const char *folder, char path[kKeptPath]) {
  snprintf(path, kKeptPath, "%.199s/%u-%u-%u-%u.listing", folder, exchange->run, exchange->process,
           exchange->thread, exchange->number);
}
