/// How arguments and fields are named to the user, in help and in error lines.
#ifndef OLT_CLI_EXPECTATIONS_H
#define OLT_CLI_EXPECTATIONS_H

#include <string>

#include "catalog/operation.h"

namespace olt::cli {

/// What an input takes: "a number from 0 to 4294967295".
std::string expected(const catalog::Argument &argument);
std::string expected(const catalog::Field &field);

/// Bytes that a text in the field may have.
uint32_t longest_text(const catalog::Field &field);

/// Bytes that the description of a VLAN may have; 0 where none is taken.
uint32_t described_bytes(const catalog::Argument &argument);

/// Whether NAME=VALUE may be given: for inputs, and for buffers, whose bytes can go to a file.
bool takes_value(const catalog::Argument &argument);

/// The names of an operation's inputs: "name, password, level_a, level_b"; "none" without any.
std::string input_names(const catalog::Operation &operation);

/// Whether the call can be made without the argument.
bool may_be_left_out(const catalog::Argument &argument);

}  // namespace olt::cli

#endif
