/// How much fits on a terminal.
#ifndef OLT_CLI_TEXT_TERMINAL_SIZE_H
#define OLT_CLI_TEXT_TERMINAL_SIZE_H

#include <unistd.h>

#include <cstddef>
#include <optional>

namespace olt::cli {

struct TerminalSize {
  size_t columns;
  size_t lines;
};

/// Of those that do not say.
inline constexpr TerminalSize kUsualTerminal = {80, 24};

/// Nothing when the descriptor is no terminal, or one that does not say its size.
std::optional<TerminalSize> terminal_size(int descriptor = STDOUT_FILENO);

}  // namespace olt::cli

#endif
