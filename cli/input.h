/// One input on its way from its word into the call.
#ifndef OLT_CLI_INPUT_H
#define OLT_CLI_INPUT_H

#include "cli/assignment.h"
#include "cli/call.h"

namespace olt::cli {

/// Reads the value as the argument or field wants it. A secret given as '-' is read without echo.
/// Throws Error.
void read_input(Call &call, const Assignment &assignment);

}  // namespace olt::cli

#endif
