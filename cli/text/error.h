/// What ends a command: one line for the user, and the exit status.
#ifndef OLT_CLI_TEXT_ERROR_H
#define OLT_CLI_TEXT_ERROR_H

#include <fmt/core.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace olt::cli {

enum ExitStatus { kDone = 0, kFailed = 1, kWrongUsage = 2 };

class Error : public std::runtime_error {
 public:
  Error(ExitStatus status, const std::string &line) : std::runtime_error(line), status_(status) {}
  ExitStatus status() const { return status_; }

 private:
  ExitStatus status_;
};

template <typename... Args>
[[noreturn]] void fail(fmt::format_string<Args...> line, Args &&...args) {
  throw Error(kFailed, fmt::format(line, std::forward<Args>(args)...));
}

/// The line says what was wrong and what is expected.
template <typename... Args>
[[noreturn]] void wrong_usage(fmt::format_string<Args...> line, Args &&...args) {
  throw Error(kWrongUsage, fmt::format(line, std::forward<Args>(args)...));
}

}  // namespace olt::cli

#endif
