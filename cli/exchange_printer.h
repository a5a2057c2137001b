/// Exchanges as --trace shows them.
#ifndef OLT_CLI_EXCHANGE_PRINTER_H
#define OLT_CLI_EXCHANGE_PRINTER_H

#include <string>

#include "platform/olthost.h"

namespace olt::cli {

/// The lines for one exchange. Where the catalog knows of a secret, it is masked.
std::string trace_text(const olt_exchange &exchange);

}  // namespace olt::cli

#endif
