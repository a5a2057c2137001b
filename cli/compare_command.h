/// The command "compare".
#ifndef OLT_CLI_COMPARE_COMMAND_H
#define OLT_CLI_COMPARE_COMMAND_H

#include <span>
#include <string>
#include <vector>

#include "cli/session.h"
#include "cli/text/command_options.h"

namespace olt::cli {

void run_compare(Session &session, std::span<const std::string> words);
std::vector<std::string> words_of_compare(std::span<const std::string> words);
std::string details_of_compare();
std::span<const CommandOption> options_of_compare();

}  // namespace olt::cli

#endif
