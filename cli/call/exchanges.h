/// Watches the exchanges of this process.
#ifndef OLT_CLI_CALL_EXCHANGES_H
#define OLT_CLI_CALL_EXCHANGES_H

#include <cstdint>
#include <optional>
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

/// How an exchange ended.
struct ExchangeEnd {
  int32_t transport = 0;  ///< enum olt_transport_result
  uint16_t status = 0;    ///< 0 where none came
  /// Some operations hand out a copy of a reply without its length.
  uint32_t reply_length = 0;
};

/// This thread's last exchange since it began to make those of an operation; nothing if it made
/// none.
std::optional<ExchangeEnd> last_exchange();

}  // namespace olt::cli

#endif
