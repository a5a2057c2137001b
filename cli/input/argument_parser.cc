#include "cli/input/argument_parser.h"

#include <algorithm>
#include <vector>

#include "cli/input/argument_forms.h"
#include "cli/input/assignment.h"
#include "cli/text/error.h"
#include "cli/text/field_forms.h"
#include "cli/text/secret.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::Operation;

namespace {

bool is_given(const std::vector<Assignment> &assignments, size_t place) {
  return std::any_of(assignments.begin(), assignments.end(),
                     [place](const Assignment &given) { return given.place == place; });
}

/// Secrets that are left out are asked for; anything else must be there.
void complete(const Operation &operation, std::vector<Assignment> &assignments) {
  for (size_t place = 0; place < operation.argument_count; ++place) {
    const Argument &argument = operation.arguments()[place];
    if (argument.may_be_left_out() || is_given(assignments, place)) continue;
    std::string expected = form_of(argument).expected(argument);
    if (!argument.secret) {
      wrong_usage("{}: {} is missing; expected {}", operation.name, argument.name, expected);
    }
    if (!can_ask()) {
      wrong_usage("{}: {} is missing; expected {}, or '-' to read it from standard input",
                  operation.name, argument.name, expected);
    }
    assignments.push_back({place, nullptr, 0, "-"});
  }
}

void read_field(Call &call, size_t place, const Field &field, std::string_view text) {
  call.set_bytes(place, field.offset, parse_field(field, text));
}

void read(Call &call, const Assignment &given) {
  const Operation &operation = call.operation();
  const Argument &argument = operation.arguments()[given.place];
  const Field *field = given.field;
  const char *name = field != nullptr ? field->name : argument.name;
  bool asks = given.is_secret(operation) && given.value == "-";
  std::string secret = asks ? read_secret(name) : std::string();
  std::string_view text = asks ? secret : given.value;
  try {
    if (field != nullptr) {
      read_field(call, given.place, *field, text);
    } else {
      form_of(argument).read(call, given.place, text);
    }
  } catch (const BadValue &bad) {
    wrong_usage("{}: {}: {}; expected {}", operation.name, name, bad.what(),
                field != nullptr ? form_of(field->kind).expected(*field)
                                 : form_of(argument).expected(argument));
  }
}

}  // namespace

void read_arguments(Call &call, std::span<const std::string> words) {
  std::vector<Assignment> assignments = assign(call.operation(), words);
  complete(call.operation(), assignments);
  // Fields go on top of a record that is given as a whole, in whatever order they were written.
  std::stable_partition(assignments.begin(), assignments.end(),
                        [](const Assignment &assignment) { return assignment.field == nullptr; });
  for (const Assignment &assignment : assignments) read(call, assignment);
}

}  // namespace olt::cli
