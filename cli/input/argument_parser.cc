#include "cli/input/argument_parser.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "box/state/archive.h"
#include "cli/input/argument_forms.h"
#include "cli/input/assignment.h"
#include "cli/text/error.h"
#include "cli/text/field_forms.h"
#include "cli/text/secret.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::Operation;
using nlohmann::ordered_json;

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

[[noreturn]] void refuse(const Operation &operation, const Field &field, const BadValue &bad) {
  wrong_usage("{}: {}: {}; expected {}", operation.name, field.name, bad.what(),
              form_of(field.kind).expected(field));
}

const Field &field_named(const Operation &operation, const Argument &argument,
                         std::string_view name) {
  std::vector<std::string_view> names;
  for (const Field &field : argument.fields) {
    if (field.name == name) return field;
    names.emplace_back(field.name);
  }
  wrong_usage("{}: {}: there is no field '{}'; expected: {}", operation.name, argument.name,
              printable(name), fmt::join(names, ", "));
}

/// The fields of a record from an object as results have it. A secret that is masked is not given.
void read_object(Call &call, size_t place, const ordered_json &object) {
  const Operation &operation = call.operation();
  for (const auto &[name, value] : object.items()) {
    const Field &field = field_named(operation, operation.arguments()[place], name);
    if (field.secret && value == box::kMask) continue;
    try {
      call.set_bytes(place, field.offset, parse_json(field, value));
    } catch (const BadValue &bad) {
      refuse(operation, field, bad);
    }
  }
}

/// What an assignment gives to a record in JSON; nothing when it is anything else.
std::optional<ordered_json> object_in(const Operation &operation, const Assignment &given) {
  bool has_fields = !operation.arguments()[given.place].own_fields().empty();
  if (given.field != nullptr || !has_fields || !is_object(given.value)) return std::nullopt;
  ordered_json json = ordered_json::parse(given.value, nullptr, false);
  if (json.is_object()) return json;
  wrong_usage("{}: {}: is no object in JSON; expected one with the record's fields", operation.name,
              operation.arguments()[given.place].name);
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
      call.set_bytes(given.place, field->offset, parse_field(*field, text));
    } else {
      form_of(argument).read(call, given.place, text);
    }
  } catch (const BadValue &bad) {
    if (field != nullptr) refuse(operation, *field, bad);
    wrong_usage("{}: {}: {}; expected {}", operation.name, name, bad.what(),
                form_of(argument).expected(argument));
  }
}

}  // namespace

void read_arguments(Call &call, std::span<const std::string> words) {
  std::vector<Assignment> assignments = assign(call.operation(), words);
  complete(call.operation(), assignments);
  // Fields go on top of a record that is given as a whole, in whatever order they were written.
  std::stable_partition(assignments.begin(), assignments.end(),
                        [](const Assignment &assignment) { return assignment.field == nullptr; });
  for (const Assignment &assignment : assignments) {
    std::optional<ordered_json> object = object_in(call.operation(), assignment);
    object ? read_object(call, assignment.place, *object) : read(call, assignment);
  }
}

}  // namespace olt::cli
