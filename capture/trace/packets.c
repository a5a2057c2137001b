#include "capture/trace/packets.h"

#include <stddef.h>
#include <string.h>

#include "capture/trace/capture_file.h"
#include "capture/trace/secrets.h"

#if __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__
#error "the records and their header are little-endian"
#endif

enum { kRequest = 1, kAnswer = 2 };
enum { kNoReply = 1, kMasked = 2 };

/// Before each record.
struct header {
  char magic[4];
  uint8_t kind, flags;
  uint16_t header_length;
  uint32_t run, process, thread, exchange;
  uint32_t module, message_type, timeout;
  uint32_t record_length;  ///< before it was cut
  uint32_t result;
  uint16_t status, reserved;
  uint32_t duration_low, duration_high;
  uint32_t lost, reserved_3c;
};

struct packet {
  uint32_t block_type, block_length, interface, time_high, time_low, captured, original;
  uint8_t tags[12];
  struct header header;
};
_Static_assert(sizeof(struct packet) == 104 && offsetof(struct packet, header) == 40, "no gaps");

struct options {
  uint16_t flags_code, flags_length;
  uint32_t flags;
  uint32_t end;
};

static const uint32_t kPacketBlock = 6;
static const uint8_t kTags[12] = {0, 12, 0, 4, 'o', 'l', 't', 0, 0, 0, 0, 0};
enum {
  kMaxRecord = 131072,  ///< readers take packets of at most 262,144 bytes
  kBeforeRecord = sizeof(struct packet) - offsetof(struct packet, tags),
  kBlockEnd = sizeof(struct options) + sizeof(uint32_t)
};

static uint32_t shown(uint32_t length) {
  return length < kMaxRecord ? length : kMaxRecord;
}

static uint32_t padding_after(uint32_t length) {
  return -length & 3;
}

static uint32_t block_length(uint32_t record_length) {
  uint32_t length = shown(record_length);
  return (uint32_t)sizeof(struct packet) + length + padding_after(length) + kBlockEnd;
}

/// Fills in one packet, except for the first 8 bytes.
static void put_packet(uint8_t *at, const struct exchange *exchange, const struct room *room,
                       uint8_t kind, bool with_secrets) {
  bool is_request = kind == kRequest;
  const void *record = is_request ? exchange->request : exchange->reply;
  uint32_t length = is_request ? exchange->request_length : exchange->reply_length;
  uint32_t kept = shown(length);
  uint64_t time = exchange->began + (is_request ? 0 : exchange->duration);
  struct packet packet = {.time_high = (uint32_t)(time >> 32),
                          .time_low = (uint32_t)time,
                          .captured = kBeforeRecord + kept,
                          .original = kBeforeRecord + length,
                          .header = {.magic = {'O', 'L', 'T', '1'},
                                     .kind = kind,
                                     .flags = exchange->no_reply != 0 ? kNoReply : 0,
                                     .header_length = sizeof(struct header),
                                     .run = room->run,
                                     .process = room->process,
                                     .thread = exchange->thread,
                                     .exchange = room->exchange,
                                     .module = exchange->module,
                                     .message_type = exchange->message_type,
                                     .timeout = exchange->timeout,
                                     .record_length = length,
                                     .lost = room->lost}};
  memcpy(packet.tags, kTags, sizeof kTags);
  if (!is_request) {
    packet.header.result = exchange->result;
    packet.header.status = exchange->status;
    packet.header.duration_low = (uint32_t)exchange->duration;
    packet.header.duration_high = (uint32_t)(exchange->duration >> 32);
  }
  uint8_t *end = at + sizeof packet;
  if (kept > 0) {
    if (with_secrets) {
      memcpy(end, record, kept);
    } else if (copy_masked(end, record, kept, exchange->module, exchange->message_type)) {
      packet.header.flags |= kMasked;
    }
  }
  memcpy(at + 8, &packet.interface, sizeof packet - 8);
  end += kept;
  memset(end, 0, padding_after(kept));
  end += padding_after(kept);
  struct options options = {.flags_code = 2, .flags_length = 4, .flags = is_request ? 2 : 1};
  memcpy(end, &options, sizeof options);
  uint32_t block = block_length(length);
  memcpy(end + sizeof options, &block, sizeof block);
}

void record_exchange(const struct exchange *exchange, bool with_secrets) {
  uint32_t first = block_length(exchange->request_length);
  uint32_t second = block_length(exchange->reply_length);
  struct room room;
  if (!take_room(first + second, &room)) return;
  put_packet(room.at, exchange, &room, kRequest, with_secrets);
  room.lost = 0;
  uint8_t *answer = room.at + first;
  memcpy(answer, (uint32_t[2]){kPacketBlock, second}, 8);
  put_packet(answer, exchange, &room, kAnswer, with_secrets);
  commit_room(first + second, kPacketBlock, first);
}
