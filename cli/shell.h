/// The interactive shell: line editing, completion from the catalog, history in the state folder.
#ifndef OLT_CLI_SHELL_H
#define OLT_CLI_SHELL_H

#include "cli/session.h"

namespace olt::cli {

/// Runs commands from the terminal until exit or the end of input. Throws Error when there is no
/// terminal.
void run_shell(Session &session);

}  // namespace olt::cli

#endif
