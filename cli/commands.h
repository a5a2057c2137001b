/// What oltctl can do: the operations of the catalog, and its own commands.
#ifndef OLT_CLI_COMMANDS_H
#define OLT_CLI_COMMANDS_H

#include <nlohmann/json.hpp>

#include <span>
#include <string>

#include "catalog/layout.h"
#include "catalog/operation.h"
#include "cli/command.h"
#include "cli/session.h"

namespace olt::cli {

std::span<const Command> commands();

/// The command of that name, or null.
const Command *find_command(const std::string &name);

/// Carries out one line and prints the results. Throws Error.
void run_line(Session &session, std::span<const std::string> words);

/// The operation of that name. Throws Error, which suggests near names.
const catalog::Operation &operation_named(const std::string &name,
                                          const catalog::Layout &layout = catalog::Layout::box());

/// What an operation or a command takes and does, with an example; of all commands without a name.
/// Throws Error.
std::string help_text(const std::string &name,
                      const catalog::Layout &layout = catalog::Layout::box());

/// All commands, and what else the shell takes.
std::string shell_help_text();

/// The same as data: an operation's object as in catalog_json(), a command's, or all commands'.
nlohmann::ordered_json help_json(const std::string &name, const catalog::Layout &layout);

/// The commands as --help shows them.
std::string command_summaries();

}  // namespace olt::cli

#endif
