/// The terminal that is the standard output.
#ifndef OLT_CLI_OUTPUT_TERMINAL_SIZE_H
#define OLT_CLI_OUTPUT_TERMINAL_SIZE_H

#include <cstddef>
#include <optional>

namespace olt::cli {

struct TerminalSize {
  size_t columns;
  size_t lines;
};

/// Nothing when the standard output is no terminal, or one that does not say its size.
std::optional<TerminalSize> terminal_size();

}  // namespace olt::cli

#endif
