/// The texts of oltctl list and oltctl help that are about operations.
#ifndef OLT_CLI_MANUAL_H
#define OLT_CLI_MANUAL_H

#include <string>
#include <string_view>

#include "catalog/operation.h"

namespace olt::cli {

/// Name and summary by family: all, or those that have the word in either. Throws Error when there
/// are none.
std::string list_text(std::string_view word);

/// Whether list_text() has something about the word.
bool is_listed(std::string_view word);

/// What an operation takes and does, with an example.
std::string help_of(const catalog::Operation &operation);

std::string lower(std::string_view text);

}  // namespace olt::cli

#endif
