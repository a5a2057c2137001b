/// Questions at the terminal, and colours there.
#ifndef OLT_CLI_TEXT_QUESTION_H
#define OLT_CLI_TEXT_QUESTION_H

#include <string>
#include <string_view>

namespace olt::cli {

/// Whether somebody sees a question and can answer it: standard input and standard error are
/// terminals.
bool can_confirm();

/// Asks on standard error. @return whether the answer is y or yes
bool confirm(std::string_view question);

enum class Colour { kRed = 31, kGreen = 32 };

/// The text in that colour where standard error is a terminal and NO_COLOR is not set.
std::string coloured(Colour colour, std::string_view text);

}  // namespace olt::cli

#endif
