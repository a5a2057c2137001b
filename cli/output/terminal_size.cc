#include "cli/output/terminal_size.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace olt::cli {

std::optional<TerminalSize> terminal_size() {
  winsize size{};
  bool is_known =
      ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0;
  if (!is_known) return std::nullopt;
  return TerminalSize{size.ws_col, size.ws_row};
}

}  // namespace olt::cli
