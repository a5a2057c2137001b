/// Which word of a command line goes to which argument.
#ifndef OLT_CLI_INPUT_ASSIGNMENT_H
#define OLT_CLI_INPUT_ASSIGNMENT_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "catalog/operation.h"

namespace olt::cli {

struct Assignment {
  size_t place;                 ///< of the argument in the operation's list
  const catalog::Field *field;  ///< the field of a record; null for the argument as a whole
  size_t word;                  ///< where on the command line
  std::string_view value;       ///< within that word

  bool is_secret(const catalog::Operation &operation) const {
    return field != nullptr ? field->secret : operation.arguments()[place].secret;
  }
};

/// Assigns words by name (NAME=VALUE, FIELD=VALUE, ARGUMENT.FIELD=VALUE) or, for the others, by
/// position. A word N/M goes to two arguments that name an interface. A word with an identifier
/// before a '=' is always a named one. Throws Error. The values point into the words.
std::vector<Assignment> assign(const catalog::Operation &operation,
                               std::span<const std::string> words);

/// Whether a value is an object in JSON, not records in braces.
bool is_object(std::string_view value);

/// The argument that the next word without a name goes to; the number of arguments without any.
size_t next_place(const catalog::Operation &operation, std::span<const Assignment> taken);

}  // namespace olt::cli

#endif
