/// Exchanges as --trace shows them.
#ifndef OLT_CLI_CALL_EXCHANGE_PRINTER_H
#define OLT_CLI_CALL_EXCHANGE_PRINTER_H

#include <string>

#include "platform/olthost.h"

namespace olt::cli {

/// The lines for one exchange. Every place where its type may carry a secret is masked.
std::string trace_text(const olt_exchange &exchange);

}  // namespace olt::cli

#endif
