#include "cli/input/assignment.h"

#include <algorithm>
#include <cctype>

#include "base/text.h"
#include "cli/text/error.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::Operation;

namespace {

struct Target {
  size_t place;
  const Field *field;
};

/// The part before the '=' when it is an identifier, else nothing.
std::string_view name_in(std::string_view word) {
  std::string_view name = word.substr(0, word.find('='));
  bool is_name = name.size() < word.size() && !name.empty() &&
                 std::isdigit(static_cast<unsigned char>(name[0])) == 0 &&
                 std::all_of(name.begin(), name.end(), [](unsigned char character) {
                   return std::isalnum(character) != 0 || character == '_' || character == '.';
                 });
  return is_name ? name : std::string_view{};
}

/// The names of an operation's inputs: "name, password, level_a, level_b"; "none" without any.
std::string input_names(const Operation &operation) {
  std::string names;
  auto add = [&names](const char *name) {
    names += names.empty() ? "" : ", ";
    names += name;
  };
  for (const Argument &argument : operation.arguments()) {
    if (!argument.takes_value()) continue;
    add(argument.name);
    for (const Field &field : argument.own_fields()) add(field.name);
  }
  return names.empty() ? "none" : names;
}

bool has_field(const Argument &argument, std::string_view name) {
  std::span<const Field> fields = argument.own_fields();
  return std::any_of(fields.begin(), fields.end(),
                     [name](const Field &field) { return field.name == name; });
}

/// The targets that a name fits: the argument of that name alone, else every field of that name. A
/// record with a field of its own name is meant as a whole when a file is given.
std::vector<Target> targets(const Operation &operation, std::string_view name, bool is_file) {
  std::vector<Target> found;
  for (size_t place = 0; place < operation.argument_count; ++place) {
    const Argument &argument = operation.arguments()[place];
    if (!argument.takes_value()) continue;
    bool is_whole = argument.name == name && (is_file || !has_field(argument, name));
    if (is_whole) return {{place, nullptr}};
    for (const Field &field : argument.own_fields()) {
      if (field.name == name || fmt::format("{}.{}", argument.name, field.name) == name) {
        found.push_back({place, &field});
      }
    }
  }
  return found;
}

Target resolve(const Operation &operation, std::string_view name, bool is_file) {
  std::vector<Target> found = targets(operation, name, is_file);
  if (found.empty()) {
    wrong_usage("{}: there is no argument '{}'; expected: {}", operation.name, name,
                input_names(operation));
  }
  if (found.size() > 1) {
    std::span<const Argument> arguments = operation.arguments();
    wrong_usage("{}: {} is a field of several records; expected {}.{} or {}.{}", operation.name,
                name, arguments[found[0].place].name, name, arguments[found[1].place].name, name);
  }
  return found.front();
}

Target next_in_order(const Operation &operation, const std::vector<Assignment> &taken,
                     const std::string &word) {
  for (size_t place = 0; place < operation.argument_count; ++place) {
    bool is_taken = std::any_of(taken.begin(), taken.end(), [place](const Assignment &assignment) {
      return assignment.place == place;
    });
    if (operation.arguments()[place].is_input() && !is_taken) return {place, nullptr};
  }
  wrong_usage("{}: '{}' is one argument too many; expected: {}", operation.name, printable(word),
              input_names(operation));
}

}  // namespace

std::vector<Assignment> assign(const Operation &operation, std::span<const std::string> words) {
  std::vector<Assignment> assignments;
  for (size_t i = 0; i < words.size(); ++i) {
    std::string_view value = words[i];
    std::string_view name = name_in(value);
    if (!name.empty()) value.remove_prefix(name.size() + 1);
    Target target = name.empty() ? next_in_order(operation, assignments, words[i])
                                 : resolve(operation, name, value.starts_with('@'));
    for (const Assignment &other : assignments) {
      if (other.place == target.place && other.field == target.field) {
        wrong_usage("{}: {} is given twice; expected once", operation.name,
                    target.field != nullptr ? target.field->name
                                            : operation.arguments()[target.place].name);
      }
    }
    assignments.push_back({target.place, target.field, i, value});
  }
  return assignments;
}

}  // namespace olt::cli
