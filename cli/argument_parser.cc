#include "cli/argument_parser.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "base/text.h"
#include "cli/assignment.h"
#include "cli/error.h"
#include "cli/expectations.h"
#include "cli/input.h"
#include "cli/number_text.h"
#include "cli/secret.h"

namespace olt::cli {

using catalog::Argument;
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
    if (may_be_left_out(argument) || is_given(assignments, place)) continue;
    if (!argument.secret) {
      wrong_usage("{}: {} is missing; expected {}", operation.name, argument.name,
                  expected(argument));
    }
    if (!can_ask()) {
      wrong_usage("{}: {} is missing; expected {}, or '-' to read it from standard input",
                  operation.name, argument.name, expected(argument));
    }
    assignments.push_back({place, nullptr, 0, "-"});
  }
}

}  // namespace

void read_arguments(Call &call, std::span<const std::string> words) {
  std::vector<Assignment> assignments = assign(call.operation(), words);
  complete(call.operation(), assignments);
  // Fields go on top of a record that is given as a whole, in whatever order they were written.
  std::stable_partition(assignments.begin(), assignments.end(),
                        [](const Assignment &assignment) { return assignment.field == nullptr; });
  for (const Assignment &assignment : assignments) read_input(call, assignment);
}

uint32_t parse_number(const std::string &what, std::string_view text, uint32_t most) {
  std::optional<uint32_t> number = number_in(text, most);
  if (!number) {
    wrong_usage("{}: '{}' given; expected a number from 0 to {}", what, printable(text), most);
  }
  return *number;
}

}  // namespace olt::cli
