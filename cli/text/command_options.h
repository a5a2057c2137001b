/// The options of a command: what it takes, its help and completion have from one table.
#ifndef OLT_CLI_TEXT_COMMAND_OPTIONS_H
#define OLT_CLI_TEXT_COMMAND_OPTIONS_H

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace olt::cli {

struct CommandOption {
  std::string_view name;   ///< "--count"
  std::string_view value;  ///< what it takes, such as "N", "DIR" or "FILE"; empty for a flag
  std::string_view summary;
};

/// Calls the function for each option, with its value: of "--count 2" and "--count=2", "2"; empty
/// when there is none. Throws Error for an option that the command does not have.
/// @return the other words
std::vector<std::string> take_options(
    std::string_view command, std::span<const CommandOption> options,
    std::span<const std::string> words,
    const std::function<void(std::string_view name, const std::string &value)> &take);

/// Lines for the help of the command.
std::string options_text(std::span<const CommandOption> options);

}  // namespace olt::cli

#endif
