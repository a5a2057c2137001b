/// What can come next on a command line.
#ifndef OLT_CLI_COMPLETION_H
#define OLT_CLI_COMPLETION_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "catalog/layout.h"
#include "cli/command.h"
#include "cli/options.h"

namespace olt::cli {

/// The names of operations, then those of commands.
std::vector<std::string> first_words(std::span<const Command> commands);

/// The words that begin with the prefix and may follow the words before; names of arguments end
/// with '='.
std::vector<std::string> candidates(std::span<const Command> commands,
                                    std::span<const std::string> before, std::string_view prefix,
                                    const catalog::Layout &layout = catalog::Layout::box());

/// The completion for bash, which offers the same.
std::string bash_completion(std::span<const Command> commands, std::span<const OptionName> options,
                            const catalog::Layout &layout = catalog::Layout::box());

}  // namespace olt::cli

#endif
