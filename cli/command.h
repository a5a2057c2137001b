/// A command: a first word that is not an operation.
#ifndef OLT_CLI_COMMAND_H
#define OLT_CLI_COMMAND_H

#include <span>
#include <string>
#include <vector>

#include "cli/text/command_options.h"

namespace olt::cli {

class Session;

/// In the place of a word: the path of any file.
inline constexpr const char *kAnyFile = "FILE";

struct Command {
  const char *name;
  const char *usage;    ///< the forms that it takes, a line each
  const char *summary;  ///< one line

  /// Carries out the words, of which the first one is the name. Throws Error.
  void (*run)(Session &session, std::span<const std::string> words);

  /// The words that may follow these, of which the first one is the name; "NAME=" and "NAME=VALUE"
  /// where a value is named. Null when none may.
  std::vector<std::string> (*next_words)(std::span<const std::string> words) = nullptr;

  /// More for its help, as lines. Null when there is none.
  std::string (*details)() = nullptr;

  /// Its own options. Null when it has none.
  std::span<const CommandOption> (*options)() = nullptr;
};

}  // namespace olt::cli

#endif
