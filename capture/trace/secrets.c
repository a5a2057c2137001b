#include "capture/trace/secrets.h"

#include <stddef.h>
#include <string.h>

struct secret {
  uint16_t message_type, offset, length;
  uint16_t stride;  ///< from the start of one to the next; 0 when there is one
};

static const struct secret kSecrets[] = {
#include "capture/trace/secret_rows.inc"
};
enum { kSecretCount = sizeof kSecrets / sizeof *kSecrets };

static const uint16_t kToTheEnd = UINT16_MAX;

/// The box's own controls, and what in them begins a piece of a configuration.
static const uint32_t kControlModule = 1000;
static const char kPiece[] = "\"piece\"";

struct range {
  uint32_t begin, end;
};

/// The part of the row's secrets that begins first at or after the place.
static struct range next_of(const struct secret *row, uint32_t at, uint32_t length) {
  uint32_t width = row->length == kToTheEnd ? length : row->length;
  uint32_t begin = row->offset;
  if (row->stride != 0 && at >= begin + width)
    begin += ((at - begin - width) / row->stride + 1) * row->stride;
  uint32_t end = length;
  if (begin < length && width < length - begin) end = begin + width;
  if (at > begin) begin = at;
  if (begin >= end) return (struct range){length, length};
  return (struct range){begin, end};
}

/// Where a record of the control module holds a piece; its length when it does not.
static uint32_t piece_in(const uint8_t *record, uint32_t length) {
  const uint8_t *piece = memmem(record, length, kPiece, sizeof kPiece - 1);
  if (piece == NULL) return length;
  uint32_t at = (uint32_t)(piece - record) + (uint32_t)sizeof kPiece - 1;
  while (at < length && record[at] != '"') at++;
  return at < length ? at + 1 : length;
}

bool copy_masked(uint8_t *to, const uint8_t *record, uint32_t length, uint32_t module,
                 uint32_t message_type) {
  uint32_t first = 0;
  while (first < kSecretCount && kSecrets[first].message_type < message_type) first++;
  uint32_t end = module == kControlModule ? piece_in(record, length) : length;
  bool masked = end < length;
  for (uint32_t at = 0; at < end;) {
    struct range next = {end, end};
    for (uint32_t i = first; i < kSecretCount && kSecrets[i].message_type == message_type; i++) {
      struct range one = next_of(&kSecrets[i], at, end);
      if (one.begin < next.begin) next = one;
    }
    memcpy(to + at, record + at, next.begin - at);
    memset(to + next.begin, '*', next.end - next.begin);
    masked = masked || next.begin < next.end;
    at = next.end;
  }
  memset(to + end, '*', length - end);
  return masked;
}
