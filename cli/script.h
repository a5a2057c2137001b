/// Scripts: one command per line.
#ifndef OLT_CLI_SCRIPT_H
#define OLT_CLI_SCRIPT_H

#include <string>

#include "cli/session.h"

namespace olt::cli {

/// Runs the commands of a file, "-" for standard input, up to the first that fails. Throws Error,
/// which begins with FILE:LINE.
/// @param echoes shows each command on standard error before it runs, without secrets
/// @param keeps_going reports commands that fail and runs the rest; the Error then counts them
void run_script(Session &session, const std::string &path, bool echoes, bool keeps_going);

}  // namespace olt::cli

#endif
