/// The texts of oltctl list and oltctl help that are about operations.
#ifndef OLT_CLI_MANUAL_H
#define OLT_CLI_MANUAL_H

#include <string>
#include <string_view>

#include "catalog/operation.h"

namespace olt::cli {

/// Name and summary by family, of the operations about the word. Throws Error when there are none.
std::string list_text(std::string_view word);

/// What an operation takes and does, with an example.
std::string help_of(const catalog::Operation &operation);

}  // namespace olt::cli

#endif
