/// The texts of oltctl list and oltctl help, and what is said of a name that does not exist.
#ifndef OLT_CLI_MANUAL_H
#define OLT_CLI_MANUAL_H

#include <span>
#include <string>
#include <string_view>

#include "catalog/operation.h"

namespace olt::cli {

/// A word that may stand in the place of an operation.
struct Command {
  const char *name;
  const char *usage;
  const char *summary;
};

std::span<const Command> commands();

/// Name and summary by family: all, or those that have the word in either. Throws Error when there
/// are none.
std::string list_text(std::string_view word);

/// What an operation or a command takes and does, with an example; of all commands without a name.
/// Throws Error.
std::string help_text(const std::string &name);

/// The operation of that name. Throws Error, which suggests near names.
const catalog::Operation &operation_named(const std::string &name);

}  // namespace olt::cli

#endif
