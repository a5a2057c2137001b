/// Questions at the terminal.
#ifndef OLT_CLI_TEXT_QUESTION_H
#define OLT_CLI_TEXT_QUESTION_H

#include <string_view>

namespace olt::cli {

/// Whether somebody sees a question and can answer it: standard input and standard error are
/// terminals.
bool can_confirm();

/// Asks on standard error. @return whether the answer is y or yes
bool confirm(std::string_view question);

}  // namespace olt::cli

#endif
