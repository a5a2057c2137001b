/// How arguments and fields are named to the user, in help and in error lines.
#ifndef OLT_CLI_DESCRIBE_H
#define OLT_CLI_DESCRIBE_H

#include <string>

#include "catalog/operation.h"

namespace olt::cli {

/// What an input takes: "a number from 0 to 4294967295".
std::string expected(const catalog::Argument &argument);
std::string expected(const catalog::Field &field);

/// The names of an operation's inputs: "name, password, level_a, level_b"; "none" without any.
std::string input_names(const catalog::Operation &operation);

/// Whether the call can be made without the argument.
bool may_be_left_out(const catalog::Argument &argument);

}  // namespace olt::cli

#endif
