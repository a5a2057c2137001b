/// Long output at a terminal.
#ifndef OLT_CLI_TEXT_PAGER_H
#define OLT_CLI_TEXT_PAGER_H

#include <string>

namespace olt::cli {

/// From now on print() shows what is longer than the screen in a pager: $PAGER, else less where it
/// is installed and the terminal can do more than print lines.
void use_pager();

/// Shows the text in the pager.
/// @return false when it is short, when there is no pager or when it does not start
bool show_in_pager(const std::string &text);

}  // namespace olt::cli

#endif
