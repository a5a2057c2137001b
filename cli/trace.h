/// --trace: every exchange on standard error, as it ends.
#ifndef OLT_CLI_TRACE_H
#define OLT_CLI_TRACE_H

#include <string>

#include "platform/olthost.h"

namespace olt::cli {

/// The lines for one exchange. Where the catalog knows of a secret, it is masked.
std::string trace_text(const olt_exchange &exchange);

/// Traces the exchanges of this process from now on.
void start_trace();

}  // namespace olt::cli

#endif
