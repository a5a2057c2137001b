/// What can come next on a command line.
#ifndef OLT_CLI_COMPLETION_H
#define OLT_CLI_COMPLETION_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace olt::cli {

/// The words that begin with the prefix and may follow the words before; names of arguments end
/// with '='.
std::vector<std::string> candidates(std::span<const std::string> before, std::string_view prefix);

/// The completion for bash, made from the catalog.
std::string bash_completion();

}  // namespace olt::cli

#endif
