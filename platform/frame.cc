#include "platform/frame.h"

#include <algorithm>

#include "platform/olthost.h"

namespace olt::platform {

namespace {

constexpr uint32_t kRequestMagic = 0x31514c4f;  // "OLQ1"
constexpr uint32_t kAnswerMagic = 0x31414c4f;   // "OLA1"
constexpr uint32_t kNoReplyFlag = 1;
constexpr uint16_t kAnswerKind = 0;
constexpr uint16_t kRefusalKind = 1;

void put16(std::byte *to, uint16_t value) {
  to[0] = static_cast<std::byte>(value & 0xff);
  to[1] = static_cast<std::byte>(value >> 8);
}

void put32(std::byte *to, uint32_t value) {
  put16(to, static_cast<uint16_t>(value & 0xffff));
  put16(to + 2, static_cast<uint16_t>(value >> 16));
}

uint16_t get16(const std::byte *from) {
  return static_cast<uint16_t>(std::to_integer<unsigned>(from[0]) |
                               std::to_integer<unsigned>(from[1]) << 8);
}

uint32_t get32(const std::byte *from) {
  return get16(from) | static_cast<uint32_t>(get16(from + 2)) << 16;
}

}  // namespace

std::array<std::byte, kRequestHeaderSize> encode(const RequestHeader &header) {
  std::array<std::byte, kRequestHeaderSize> bytes;
  put32(bytes.data(), kRequestMagic);
  put32(&bytes[4], header.sequence);
  put32(&bytes[8], header.message_type);
  put32(&bytes[12], header.no_reply ? kNoReplyFlag : 0);
  put32(&bytes[16], header.length);
  return bytes;
}

std::array<std::byte, kAnswerHeaderSize> encode(const AnswerHeader &header) {
  std::array<std::byte, kAnswerHeaderSize> bytes;
  put32(bytes.data(), kAnswerMagic);
  put32(&bytes[4], header.sequence);
  put16(&bytes[8], header.status);
  put16(&bytes[10], header.refused ? kRefusalKind : kAnswerKind);
  put32(&bytes[12], header.length);
  return bytes;
}

bool may_be_request(const std::byte *bytes, size_t count) {
  std::array<std::byte, sizeof kRequestMagic> magic;
  put32(magic.data(), kRequestMagic);
  return std::equal(magic.begin(), magic.begin() + std::min(count, magic.size()), bytes);
}

std::optional<RequestHeader> decode_request(const std::byte *bytes) {
  uint32_t flags = get32(bytes + 12);
  RequestHeader header{.sequence = get32(bytes + 4),
                       .message_type = get32(bytes + 8),
                       .no_reply = flags == kNoReplyFlag,
                       .length = get32(bytes + 16)};
  if (get32(bytes) != kRequestMagic || flags > kNoReplyFlag || header.length > OLT_REQUEST_LIMIT) {
    return std::nullopt;
  }
  return header;
}

std::optional<AnswerHeader> decode_answer(const std::byte *bytes) {
  uint16_t kind = get16(bytes + 10);
  AnswerHeader header{.sequence = get32(bytes + 4),
                      .status = get16(bytes + 8),
                      .refused = kind == kRefusalKind,
                      .length = get32(bytes + 12)};
  if (get32(bytes) != kAnswerMagic || kind > kRefusalKind || header.length > OLT_REPLY_LIMIT) {
    return std::nullopt;
  }
  return header;
}

}  // namespace olt::platform
