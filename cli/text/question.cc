#include "cli/text/question.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace olt::cli {

bool can_confirm() {
  return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1;
}

bool confirm(std::string_view question) {
  fmt::print(stderr, "{} [y/N] ", question);
  std::string answer;
  if (!std::getline(std::cin, answer)) {
    std::cin.clear();
    fmt::print(stderr, "\n");
  }
  return answer == "y" || answer == "yes";
}

std::string coloured(Colour colour, std::string_view text) {
  const char *none = std::getenv("NO_COLOR");
  bool is_plain = (none != nullptr && *none != '\0') || isatty(STDERR_FILENO) == 0;
  if (is_plain) return std::string(text);
  return fmt::format("\x1b[{}m{}\x1b[0m", static_cast<int>(colour), text);
}

}  // namespace olt::cli
