/// Arguments as text: one row per way in which an argument is passed.
#ifndef OLT_CLI_INPUT_ARGUMENT_FORMS_H
#define OLT_CLI_INPUT_ARGUMENT_FORMS_H

#include <string>
#include <string_view>

#include "catalog/operation.h"
#include "cli/call/call.h"

namespace olt::cli {

struct ArgumentForm {
  catalog::Kind kind;
  const char *name;

  /// What an input takes: "a number from 0 to 4294967295". Null for outputs.
  std::string (*expected)(const catalog::Argument &);
  std::string (*example)(const catalog::Argument &);
  /// Sets the argument in the call. Throws BadValue, and Error where a secret is asked for.
  void (*read)(Call &call, size_t place, std::string_view text);

  /// What an output is: "a number". Null for inputs.
  std::string (*described)(const catalog::Argument &);
};

const ArgumentForm &form_of(const catalog::Argument &argument);

}  // namespace olt::cli

#endif
