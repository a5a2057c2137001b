/// Requests and replies of the scripted platform as bytes.
#ifndef OLT_TESTS_LIBRARY_EXCHANGE_BYTES_H
#define OLT_TESTS_LIBRARY_EXCHANGE_BYTES_H

#include "tests/library/scripted_platform.h"
#include "tests/support/bytes.h"

namespace olt::test {

inline Bytes request_of(const Event &exchange) {
  return {exchange.request_bytes, exchange.request_bytes + exchange.request_length};
}

/// The reply must outlive the exchange.
inline Answer answer_with(const Bytes &reply) {
  return {.reply = reply.data(), .reply_length = static_cast<uint16_t>(reply.size())};
}

}  // namespace olt::test

#endif
