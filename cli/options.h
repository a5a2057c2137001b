/// What the command line of oltctl asks for.
#ifndef OLT_CLI_OPTIONS_H
#define OLT_CLI_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "cli/box/access.h"
#include "cli/output/format.h"

namespace olt::cli {

struct Options {
  Format format = Format::kText;
  bool trace = false;
  bool yes = false;   ///< answers questions
  bool zero = false;  ///< zeros for what is not given, whatever is there
  Detail detail;
  std::string layout;  ///< a name or a file
  BoxOptions box;
  std::optional<std::string> script;  ///< "-" for standard input
  bool echo = false;                  ///< of a script: each command, before it runs
  bool keep_going = false;            ///< of a script: past commands that fail
  std::vector<std::string> words;     ///< the command
};

/// An option as completion needs it.
struct OptionName {
  std::string name;   ///< "--box", "-f"
  std::string value;  ///< "DIR" or "FILE"; empty for a flag
};

std::vector<OptionName> option_names();

/// Reads the command line. Nothing when it asked for help or version, which is then printed.
/// @param commands lines about each command, for the help
/// Throws Error.
std::optional<Options> parse_options(int argc, const char *const *argv,
                                     const std::string &commands);

}  // namespace olt::cli

#endif
