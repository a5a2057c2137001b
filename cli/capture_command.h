/// The command capture: the exchanges of a running box, as a file.
#ifndef OLT_CLI_CAPTURE_COMMAND_H
#define OLT_CLI_CAPTURE_COMMAND_H

#include <span>
#include <string>
#include <vector>

#include "cli/session.h"
#include "cli/text/command_options.h"

namespace olt::cli {

/// Throws Error.
void run_capture(Session &session, std::span<const std::string> words);

std::vector<std::string> words_of_capture(std::span<const std::string> words);
std::string details_of_capture();
std::span<const CommandOption> options_of_capture();

}  // namespace olt::cli

#endif
