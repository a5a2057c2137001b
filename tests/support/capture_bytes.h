/// Captures as docs/capture.md describes them, written independently of the recorder.
#ifndef OLT_TESTS_SUPPORT_CAPTURE_BYTES_H
#define OLT_TESTS_SUPPORT_CAPTURE_BYTES_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "tests/support/bytes.h"

namespace olt::test {

struct RecordedExchange {
  uint32_t type = 12;
  Bytes request;
  Bytes reply;
  uint32_t module = 2;
  uint32_t result = 0;
  uint16_t status = 0;
  uint32_t exchange = 1;
  uint32_t process = 1234;
  uint32_t thread = 1234;
  uint64_t time = 1'000'000'000;  ///< of the request, in nanoseconds since 1970
  uint64_t duration = 0;          ///< in nanoseconds
  uint32_t timeout = 10;          ///< in seconds
  bool no_reply = false;
  bool masked_request = false;
  bool masked_reply = false;
  uint32_t lost = 0;
  uint32_t request_length = 0;  ///< before it was cut; 0: it was not
};

/// A section and an interface.
std::string capture_head();
std::string request_packet(const RecordedExchange &exchange);
std::string answer_packet(const RecordedExchange &exchange);

std::string capture_of(std::span<const RecordedExchange> exchanges);

/// The place of the block that is cut when only so many bytes of the capture are left; nothing when
/// they end between two.
std::optional<size_t> cut_block(const std::string &capture, size_t left);

}  // namespace olt::test

#endif
