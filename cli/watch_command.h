/// The command "watch".
#ifndef OLT_CLI_WATCH_COMMAND_H
#define OLT_CLI_WATCH_COMMAND_H

#include <span>
#include <string>
#include <vector>

#include "cli/session.h"
#include "cli/text/command_options.h"

namespace olt::cli {

void run_watch(Session &session, std::span<const std::string> words);
std::vector<std::string> words_of_watch(std::span<const std::string> words);
std::string details_of_watch();
std::span<const CommandOption> options_of_watch();

}  // namespace olt::cli

#endif
