#include "cli/text/terminal_size.h"

#include <sys/ioctl.h>

namespace olt::cli {

std::optional<TerminalSize> terminal_size(int descriptor) {
  winsize size{};
  bool is_known = ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0;
  if (!is_known) return std::nullopt;
  return TerminalSize{size.ws_col, size.ws_row};
}

}  // namespace olt::cli
