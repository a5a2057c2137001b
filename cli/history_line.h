/// What may be shown and kept of a line.
#ifndef OLT_CLI_HISTORY_LINE_H
#define OLT_CLI_HISTORY_LINE_H

#include <optional>
#include <span>
#include <string>

#include "catalog/layout.h"

namespace olt::cli {

/// The line with '-' instead of secrets, so that it asks for them when it is used again.
/// Nothing when the line may hold a secret elsewhere: in a record given as a whole, after a word
/// that is no known operation, or in the words of a command.
std::optional<std::string> history_line(std::span<const std::string> words,
                                        const catalog::Layout &layout = catalog::Layout::box());

/// The line as --echo shows it: what may hold a secret is left out.
std::string echoed_line(std::span<const std::string> words,
                        const catalog::Layout &layout = catalog::Layout::box());

}  // namespace olt::cli

#endif
