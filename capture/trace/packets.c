#include "capture/trace/packets.h"

#include <stddef.h>
#include <string.h>

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

static const uint8_t kTags[12] = {0, 12, 0, 4, 'o', 'l', 't', 0, 0, 0, 0, 0};
enum {
  kMaxRecord = 131072,  ///< readers take packets of at most 262,144 bytes
  kBeforeRecord = sizeof(struct packet) - offsetof(struct packet, tags)
};

static uint32_t shown(uint32_t length) {
  return length < kMaxRecord ? length : kMaxRecord;
}

static uint32_t padding_after(uint32_t length) {
  return -length & 3;
}

uint32_t packet_size(uint32_t record_length) {
  uint32_t length = shown(record_length);
  uint32_t length_again = sizeof(uint32_t);
  return (uint32_t)sizeof(struct packet) + length + padding_after(length) + length_again;
}

static uint8_t *put_words(uint8_t *at, const uint32_t *words, size_t count) {
  memcpy(at, words, count * 4);
  return at + count * 4;
}

static uint8_t *put_option(uint8_t *at, uint16_t code, const void *value, size_t length) {
  uint16_t head[2] = {code, (uint16_t)length};
  size_t room = (length + 3) & ~(size_t)3;
  memcpy(at, head, 4);
  memset(at + 4, 0, room);
  memcpy(at + 4, value, length);
  return at + 4 + room;
}

/// Ends options and block. @return the block's length
static uint32_t end_block(uint8_t *start, uint8_t *at) {
  uint32_t length = (uint32_t)(at - start) + 8;
  memcpy(start + 4, &length, 4);
  put_words(at, (uint32_t[2]){0, length}, 2);
  return length;
}

uint32_t put_section(uint8_t *at, const char *program) {
  static const uint32_t kSection[6] = {0x0A0D0D0A, 0, 0x1A2B3C4D, 1, UINT32_MAX, UINT32_MAX};
  uint8_t *option = put_words(at, kSection, 6);
  return end_block(at, put_option(option, 4, program, strlen(program)));
}

uint32_t put_interface(uint8_t *at, const char *name, const char *description) {
  static const uint32_t kInterface[4] = {1, 0, 252, 0};
  uint8_t *option = put_words(at, kInterface, 4);
  option = put_option(option, 2, name, strlen(name));
  if (description != NULL) option = put_option(option, 3, description, strlen(description));
  return end_block(at, put_option(option, 9, "\x09", 1));  // nanoseconds
}

static void put_packet(uint8_t *at, const struct exchange *exchange, uint8_t kind,
                       bool with_secrets) {
  bool is_request = kind == kRequest;
  const void *record = is_request ? exchange->request : exchange->reply;
  uint32_t length = is_request ? exchange->request_length : exchange->reply_length;
  uint32_t kept = shown(length);
  uint64_t time = exchange->began + (is_request ? 0 : exchange->duration);
  struct packet packet = {.block_type = kPacketBlock,
                          .block_length = packet_size(length),
                          .interface = exchange->interface,
                          .time_high = (uint32_t)(time >> 32),
                          .time_low = (uint32_t)time,
                          .captured = kBeforeRecord + kept,
                          .original = kBeforeRecord + length,
                          .header = {.magic = {'O', 'L', 'T', '1'},
                                     .kind = kind,
                                     .flags = exchange->no_reply != 0 ? kNoReply : 0,
                                     .header_length = sizeof(struct header),
                                     .run = exchange->run,
                                     .process = exchange->process,
                                     .thread = exchange->thread,
                                     .exchange = exchange->number,
                                     .module = exchange->module,
                                     .message_type = exchange->message_type,
                                     .timeout = exchange->timeout,
                                     .record_length = length,
                                     .lost = is_request ? exchange->lost : 0}};
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
  memcpy(at, &packet, sizeof packet);
  end += kept;
  memset(end, 0, padding_after(kept));
  end += padding_after(kept);
  memcpy(end, &packet.block_length, sizeof packet.block_length);
}

void put_packets(uint8_t *at, const struct exchange *exchange, bool with_secrets) {
  put_packet(at, exchange, kRequest, with_secrets);
  put_packet(at + packet_size(exchange->request_length), exchange, kAnswer, with_secrets);
}
