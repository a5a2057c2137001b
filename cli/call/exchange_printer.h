/// Exchanges as --trace shows them.
#ifndef OLT_CLI_CALL_EXCHANGE_PRINTER_H
#define OLT_CLI_CALL_EXCHANGE_PRINTER_H

#include <span>
#include <string>

#include "catalog/catalog.h"
#include "catalog/operation.h"
#include "platform/olthost.h"

namespace olt::cli {

/// The lines for one exchange, with its secrets masked. Fields are named when the operation is
/// known.
std::string trace_text(const olt_exchange &exchange,
                       std::span<const catalog::WireSecret> secrets = catalog::wire_secrets(),
                       const catalog::Operation *operation = nullptr);

}  // namespace olt::cli

#endif
