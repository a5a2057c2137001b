/// Passwords from the terminal.
#ifndef OLT_CLI_TEXT_SECRET_H
#define OLT_CLI_TEXT_SECRET_H

#include <string>
#include <string_view>

namespace olt::cli {

/// Whether the user can be asked: standard input is a terminal.
bool can_ask();

/// Asks for a secret without echo. When standard input is not a terminal, reads one line from it.
/// Throws Error.
std::string read_secret(std::string_view name);

}  // namespace olt::cli

#endif
