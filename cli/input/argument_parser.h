/// From the words of a command line to a call that can be made.
#ifndef OLT_CLI_INPUT_ARGUMENT_PARSER_H
#define OLT_CLI_INPUT_ARGUMENT_PARSER_H

#include <span>
#include <string>

#include "cli/call/call.h"

namespace olt::cli {

/// Fills the call's inputs. Secrets given as '-', or left out at a terminal, are read without
/// echo. Throws Error.
void read_arguments(Call &call, std::span<const std::string> words);

}  // namespace olt::cli

#endif
