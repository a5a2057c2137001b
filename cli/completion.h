/// What can come next on a command line.
#ifndef OLT_CLI_COMPLETION_H
#define OLT_CLI_COMPLETION_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "catalog/layout.h"
#include "cli/command.h"

namespace olt::cli {

/// What the word at the cursor may become.
struct Completion {
  enum class Kind { kWords, kFiles, kDirectories };

  Kind kind = Kind::kWords;
  std::vector<std::string> words;  ///< of kWords; names of arguments end with '='
  std::string before;              ///< of the others: what the word has before the path
};

/// The names of operations, then those of commands.
std::vector<std::string> first_words(std::span<const Command> commands);

/// @param before the words before it, of which the first one is the command
/// @param word as far as it is typed
Completion complete_word(std::span<const Command> commands, std::span<const std::string> before,
                         std::string_view word,
                         const catalog::Layout &layout = catalog::Layout::box());

/// The words of a line; the last one, which may be empty, is the one to complete. Nothing when a
/// quote is open.
std::vector<std::string> words_to_complete(std::string_view line);

/// Answers the script of a shell that completes a command line of oltctl, oltbox or oltreplay:
/// "words", "files BEFORE" or "directories BEFORE", then a line for each word, with a tab and its
/// summary if it has one.
std::string completion_answer(std::string_view line);

/// What makes bash, zsh or fish complete oltctl, oltbox and oltreplay; null for another shell.
const char *completion_script(std::string_view shell);

}  // namespace olt::cli

#endif
