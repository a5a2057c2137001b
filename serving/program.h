/// What the programs that serve modules have in common: command line, output, signals, statuses.
#ifndef OLT_SERVING_PROGRAM_H
#define OLT_SERVING_PROGRAM_H

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/line_writer.h"
#include "platform/olthost.h"
#include "serving/options.h"

namespace CLI {  // NOLINT(readability-identifier-naming): a name of CLI11
class App;
}  // namespace CLI

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

/// A command line that is being put together. Whatever it fills in must outlive it.
class CommandLine {
 public:
  CommandLine(const Console &console, const char *description);
  CommandLine(const CommandLine &) = delete;
  CommandLine &operator=(const CommandLine &) = delete;
  ~CommandLine();

  void add(const Option &option, std::string &value);
  /// For an option that may be repeated.
  void add(const Option &option, std::vector<std::string> &values);
  void add(const Option &option, bool &flag);
  /// For an option that takes a number of bytes.
  void add_limit(const Option &option, uint32_t &value);
  void add_limit(const Option &option, uint64_t &value, uint64_t min);
  /// --run-dir, --group and --pending-limit.
  void add(Access &access);
  /// Words that belong to no option, of which there must be one.
  void add_words(const char *name, const char *summary, std::vector<std::string> &words);

  /// Ends the program after --help and --version. Fills in the run directory where none is given.
  /// Throws BadInput.
  void parse(int argc, char **argv);

 private:
  const std::unique_ptr<CLI::App> app_;
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
