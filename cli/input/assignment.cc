#include "cli/input/assignment.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <utility>

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

/// Whether only a record as a whole can have the value: a file, or an object in JSON.
bool is_of_record(std::string_view value) {
  return value.starts_with('@') || is_object(value);
}

/// Whether a field of the record's own name begins an ONT, which is given as a whole.
bool begins_ont(const Argument &argument, std::string_view name) {
  if (argument.form != catalog::FieldKind::kOnt) return false;
  const Field &first = argument.fields.front();
  return first.name == name && first.kind == catalog::FieldKind::kOnt;
}

/// The targets that a name fits: the argument of that name alone, else every field of that name.
/// Where a record has a field of its own name, the name means the field.
std::vector<Target> targets(const Operation &operation, std::string_view name,
                            std::string_view value) {
  std::vector<Target> found;
  for (size_t place = 0; place < operation.argument_count; ++place) {
    const Argument &argument = operation.arguments()[place];
    if (!argument.takes_value()) continue;
    bool is_whole = argument.name == name && (is_of_record(value) || !has_field(argument, name) ||
                                              begins_ont(argument, name));
    if (is_whole) return {{place, nullptr}};
    for (const Field &field : argument.own_fields()) {
      if (field.name == name || fmt::format("{}.{}", argument.name, field.name) == name) {
        found.push_back({place, &field});
      }
    }
  }
  return found;
}

/// Says so when the name is a field of a list's items, which must be given together.
void refuse_field_of_item(const Operation &operation, std::string_view name) {
  for (const Argument &argument : operation.arguments()) {
    if (!argument.is_list()) continue;
    for (const Field &field : argument.fields) {
      if (field.name != name) continue;
      wrong_usage("{0}: '{1}' is a field of the items of {2}; expected {2}='{1}=... ...'",
                  operation.name, name, argument.name);
    }
  }
}

Target resolve(const Operation &operation, std::string_view name, std::string_view value) {
  std::vector<Target> found = targets(operation, name, value);
  if (found.empty()) refuse_field_of_item(operation, name);
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
  size_t place = next_place(operation, taken);
  if (place < operation.argument_count) return {place, nullptr};
  wrong_usage("{}: '{}' is one argument too many; expected: {}", operation.name, printable(word),
              input_names(operation));
}

bool is_taken(std::span<const Assignment> taken, size_t place) {
  return std::any_of(taken.begin(), taken.end(),
                     [place](const Assignment &assignment) { return assignment.place == place; });
}

/// Whether the argument and the one after it are the two numbers of an interface.
bool begins_interface(std::span<const Argument> arguments, size_t place) {
  constexpr std::pair<std::string_view, std::string_view> kNames[] = {{"slot", "port"},
                                                                      {"iface_a", "iface_b"}};
  if (place + 1 >= arguments.size()) return false;
  const Argument &first = arguments[place];
  const Argument &second = arguments[place + 1];
  return first.is_word() && second.is_word() &&
         std::any_of(std::begin(kNames), std::end(kNames), [&](const auto &names) {
           return first.name == names.first && second.name == names.second;
         });
}

/// Where the '/' of N/M is; npos when the word is something else.
size_t slash_of_interface(std::string_view word) {
  size_t slash = word.find('/');
  if (slash == std::string_view::npos || slash == 0 || slash + 1 == word.size()) {
    return std::string_view::npos;
  }
  bool is_interface = std::all_of(word.begin(), word.end(), [&](const char &character) {
    return std::isdigit(static_cast<unsigned char>(character)) != 0 || &character == &word[slash];
  });
  return is_interface ? slash : std::string_view::npos;
}

}  // namespace

bool is_object(std::string_view value) {
  return value.starts_with("{\"");
}

size_t next_place(const Operation &operation, std::span<const Assignment> taken) {
  for (size_t place = 0; place < operation.argument_count; ++place) {
    if (operation.arguments()[place].is_input() && !is_taken(taken, place)) return place;
  }
  return operation.argument_count;
}

std::vector<Assignment> assign(const Operation &operation, std::span<const std::string> words) {
  std::vector<Assignment> assignments;
  for (size_t i = 0; i < words.size(); ++i) {
    std::string_view value = words[i];
    std::string_view name = name_in(value);
    if (!name.empty()) value.remove_prefix(name.size() + 1);
    Target target = name.empty() ? next_in_order(operation, assignments, words[i])
                                 : resolve(operation, name, value);
    for (const Assignment &other : assignments) {
      if (other.place == target.place && other.field == target.field) {
        wrong_usage("{}: {} is given twice; expected once", operation.name,
                    target.field != nullptr ? target.field->name
                                            : operation.arguments()[target.place].name);
      }
    }
    size_t slash = name.empty() ? slash_of_interface(value) : std::string_view::npos;
    if (slash != std::string_view::npos && begins_interface(operation.arguments(), target.place) &&
        !is_taken(assignments, target.place + 1)) {
      assignments.push_back({target.place, nullptr, i, value.substr(0, slash)});
      assignments.push_back({target.place + 1, nullptr, i, value.substr(slash + 1)});
      continue;
    }
    assignments.push_back({target.place, target.field, i, value});
  }
  return assignments;
}

}  // namespace olt::cli
