/// A command line as words, in scripts and in the shell.
#ifndef OLT_CLI_TEXT_WORDS_H
#define OLT_CLI_TEXT_WORDS_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace olt::cli {

/// Splits at blanks. '...' keeps everything, "..." all but \" and \\; a backslash keeps the next
/// character; # at the beginning of a word starts a comment. Throws Error for an open quote.
std::vector<std::string> split_words(std::string_view line);

/// The words of a command as somebody types or pastes it: without the program's name in front.
std::vector<std::string> command_words(std::string_view line);

/// Joins words to a line that split_words() splits into the same words.
std::string join_words(std::span<const std::string> words);

}  // namespace olt::cli

#endif
