#include "cli/text/question.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
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

}  // namespace olt::cli
