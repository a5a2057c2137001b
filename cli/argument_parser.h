/// From the words of a command line to a call that can be made.
#ifndef OLT_CLI_ARGUMENT_PARSER_H
#define OLT_CLI_ARGUMENT_PARSER_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "cli/call.h"

namespace olt::cli {

/// Fills the call's inputs. Secrets given as '-', or left out at a terminal, are read without
/// echo. Throws Error.
void read_arguments(Call &call, std::span<const std::string> words);

/// A decimal or 0x number from 0 to most. The error names what it is for.
uint32_t parse_number(const std::string &what, std::string_view text, uint32_t most);

}  // namespace olt::cli

#endif
