/// What the programs that serve modules have in common: command line, output, signals, statuses.
#ifndef OLT_SERVING_PROGRAM_H
#define OLT_SERVING_PROGRAM_H

#include <CLI/CLI.hpp>
#include <sys/types.h>
#include <unistd.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/line_writer.h"
#include "platform/olthost.h"
#include "serving/options.h"

namespace olt::serving {

/// The standard streams. A reader that is slow, or gone, does not hold up the program.
class Console {
 public:
  explicit Console(const std::string &program);

  const std::string &program() const { return program_; }
  void print(std::string_view line) { output_.write(line); }
  /// Prints "PROGRAM: LINE" on standard output.
  void tell(std::string_view line);
  /// Prints "PROGRAM: LINE" on standard error.
  void warn(std::string_view line);

 private:
  const std::string program_;
  LineWriter output_;
  LineWriter errors_;
};

/// Where modules are served, and to whom.
struct Access {
  /// Throws BadInput.
  std::optional<gid_t> group_id() const;

  std::string run_dir;
  std::string group;           ///< by name or number; empty: none
  uint32_t pending_limit = 0;  ///< 0: the platform's own
};

/// A command line that is being put together.
class CommandLine {
 public:
  CommandLine(const Console &console, const char *description);

  template <typename Value>
  CLI::Option *add(const Option &option, Value &value) {
    return app_.add_option(option.name, value, option.summary)->type_name(option.value);
  }
  void add(const Option &option, bool &value) { app_.add_flag(option.name, value, option.summary); }
  /// For an option that takes a number of bytes.
  void add_limit(const Option &option, uint32_t &value);
  /// --run-dir, --group and --pending-limit.
  void add(Access &access);

  CLI::App &app() { return app_; }

  /// Ends the program after --help and --version. Fills in the run directory where none is given.
  /// Throws CLI::ParseError and BadInput.
  void parse(int argc, char **argv);

 private:
  CLI::App app_;
  Access *access_ = nullptr;
};

/// Serves what the function adds to the server until SIGTERM or SIGINT, and says when it is ready.
/// The server's events are warnings. Throws std::runtime_error.
void serve(const Access &access, std::string_view modules, Console &console,
           const std::function<void(olt_server *)> &add_modules);

/// Runs the program; what it throws becomes one line.
/// @return its exit status: 0, 1 when it could not run, 2 for wrong usage and bad input
int run_program(const char *name, const std::function<void(Console &)> &body);

}  // namespace olt::serving

#endif
