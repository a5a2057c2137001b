/// Passwords from the terminal.
#ifndef OLT_CLI_TEXT_SECRET_H
#define OLT_CLI_TEXT_SECRET_H

#include <string>
#include <string_view>

namespace olt::cli {

/// Whether there is somebody to ask: standard input is a terminal.
bool can_ask();

/// Asks for a secret without echo, or reads one line from standard input when that is no terminal.
/// Throws Error.
std::string read_secret(std::string_view name);

}  // namespace olt::cli

#endif
