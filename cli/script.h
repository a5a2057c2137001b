/// Scripts: one command per line.
#ifndef OLT_CLI_SCRIPT_H
#define OLT_CLI_SCRIPT_H

#include <string>

#include "cli/session.h"

namespace olt::cli {

/// Runs the commands of a file, "-" for standard input, up to the first that fails. Throws Error,
/// which begins with FILE:LINE.
void run_script(Session &session, const std::string &path);

}  // namespace olt::cli

#endif
