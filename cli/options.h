/// What the command line of oltctl asks for.
#ifndef OLT_CLI_OPTIONS_H
#define OLT_CLI_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

namespace olt::cli {

struct Options {
  bool json = false;
  bool trace = false;
  bool show_secrets = false;
  bool real_flash = false;  ///< flash operations use this machine's own device
  std::string run_dir;      ///< of a running box; empty for the embedded one
  bool fresh = false;
  std::string topology;               ///< of the embedded box; empty for the default one
  std::optional<std::string> script;  ///< "-" for standard input
  std::vector<std::string> words;     ///< the command
};

/// Reads the command line. Nothing when it asked for help or version, which is then printed.
/// Throws Error.
std::optional<Options> parse_options(int argc, const char *const *argv);

}  // namespace olt::cli

#endif
