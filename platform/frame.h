/// The frames that travel between a client and a module: a fixed little-endian header, then bytes.
#ifndef OLT_PLATFORM_FRAME_H
#define OLT_PLATFORM_FRAME_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace olt::platform {

inline constexpr size_t kRequestHeaderSize = 20;
inline constexpr size_t kAnswerHeaderSize = 16;

struct RequestHeader {
  uint32_t sequence;
  uint32_t message_type;
  bool no_reply;
  uint32_t length;
};

struct AnswerHeader {
  uint32_t sequence;
  uint16_t status;
  /// The server does not accept this peer; nothing else in the header counts.
  bool refused;
  uint32_t length;
};

std::array<std::byte, kRequestHeaderSize> encode(const RequestHeader &header);
std::array<std::byte, kAnswerHeaderSize> encode(const AnswerHeader &header);

/// False when no request begins with these bytes, of which there may be few.
bool may_be_request(const std::byte *bytes, size_t count);

/// Nothing when the bytes are not such a header, or the length is beyond its limit.
std::optional<RequestHeader> decode_request(const std::byte *bytes);
std::optional<AnswerHeader> decode_answer(const std::byte *bytes);

}  // namespace olt::platform

#endif
