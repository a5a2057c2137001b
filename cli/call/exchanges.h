/// Watches the exchanges of this process.
#ifndef OLT_CLI_CALL_EXCHANGES_H
#define OLT_CLI_CALL_EXCHANGES_H

#include <cstdint>
#include <vector>

#include "catalog/catalog.h"
#include "catalog/operation.h"

namespace olt::cli {

/// Starts to remember the length of each reply and, with trace, to show each exchange on standard
/// error when it ends, with those places masked.
void watch_exchanges(bool trace, std::vector<catalog::WireSecret> secrets = {});

/// Whose exchanges this thread makes, while the object exists.
class ExchangesOf {
 public:
  explicit ExchangesOf(const catalog::Operation &operation);
  ExchangesOf(const ExchangesOf &) = delete;
  ExchangesOf &operator=(const ExchangesOf &) = delete;
  ~ExchangesOf();
};

/// Bytes in the reply of this thread's last exchange. Some operations hand out a copy of a reply
/// without its length.
uint32_t last_reply_length();

}  // namespace olt::cli

#endif
