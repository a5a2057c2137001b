#include "cli/manual.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

#include "catalog/catalog.h"
#include "cli/input/argument_forms.h"
#include "cli/search.h"
#include "cli/text/field_forms.h"

namespace olt::cli {

using catalog::Address;
using catalog::Argument;
using catalog::Family;
using catalog::Field;
using catalog::FieldKind;
using catalog::Operation;
using catalog::Role;

namespace {

constexpr const char *kSecretToo = "; '-' reads it without echo";

std::string signature(const Operation &operation) {
  std::string text = operation.name;
  for (const Argument &argument : operation.arguments()) {
    if (!argument.is_input()) continue;
    text += argument.may_be_left_out() ? fmt::format(" [{}]", argument.name)
                                       : fmt::format(" {}", argument.name);
  }
  return text;
}

/// The column of what fields take.
size_t field_column(std::span<const Field> fields) {
  size_t column = 14;
  for (const Field &field : fields) column = std::max(column, std::string_view(field.name).size());
  return column;
}

std::string input_text(const Argument &argument) {
  std::string text =
      fmt::format("  {:<14}  {}", argument.name, form_of(argument).expected(argument));
  if (argument.secret) text += kSecretToo;
  if (argument.may_be_left_out()) {
    text += argument.is_word() ? "; 0 when left out" : "; zeros when left out";
  }
  text += '\n';
  size_t column = field_column(argument.own_fields());
  for (const Field &field : argument.own_fields()) {
    text += fmt::format("    {:<{}}  {}{}\n", field.name, column,
                        form_of(field.kind).expected(field), field.secret ? kSecretToo : "");
  }
  return text;
}

std::string output_text(const Argument &argument) {
  return fmt::format("  {:<14}  {}\n", argument.name, form_of(argument).described(argument));
}

template <typename Select, typename Describe>
std::string section(const char *title, const Operation &operation, Select select,
                    Describe describe) {
  std::string text;
  for (const Argument &argument : operation.arguments()) {
    if ((argument.*select)()) text += describe(argument);
  }
  return text.empty() ? text : fmt::format("\n{}:\n{}", title, text);
}

std::string address_text(const Address &address) {
  if (!address.sends()) {
    return "\nWorks on the flash device and sends nothing: with the embedded box on a simulated\n"
           "device, with --real-flash on this machine's /dev/mtd0.\n";
  }
  std::string module = address.module == Address::kNamedByCaller
                           ? "the module that the first argument names"
                           : fmt::format("module {}", address.module);
  if (address.second_module != Address::kNone) {
    module += fmt::format(", then to module {}", address.second_module);
  }
  return fmt::format("\nSends message type {} to {}.\n", address.message_type, module);
}

/// What becomes of fields that are not given, and whether it asks.
std::string rules_text(const Operation &operation) {
  std::string text;
  if (operation.sets_present()) {
    text += fmt::format(
        "\nWhat is not given stays as it is: {} reads it before. --zero sends zeros instead.\n"
        "At a terminal it shows the change and asks; --yes answers.\n",
        operation.present.getter);
  }
  if (operation.takes_all) {
    text +=
        "\nAll fields must be given, since no operation reads them. --zero sends zeros for the"
        " others.\n";
  }
  if (operation.destructive) text += "\nAt a terminal it asks before it acts; --yes answers.\n";
  return text;
}

std::string example_of(const Field &field) {
  return fmt::format(" {}={}", field.name, form_of(field.kind).example(field));
}

/// The fields that say what the record is about; the first that means something when none does.
std::string example_by_field(std::span<const Field> fields) {
  std::string text;
  for (const Field &field : fields) {
    if (field.role == Role::kSelector || field.role == Role::kRowName) text += example_of(field);
  }
  if (!text.empty()) return text;
  return example_of(*std::find_if(fields.begin(), fields.end(), [](const Field &field) {
    return field.role != Role::kReserved;
  }));
}

std::string example_of(const Argument &argument) {
  bool by_field = !argument.own_fields().empty() && argument.form != FieldKind::kOnt;
  if (by_field) return example_by_field(argument.fields);
  return fmt::format(
      " {}={}", argument.name,
      argument.example != nullptr ? argument.example : form_of(argument).example(argument));
}

std::string example_arguments(const Operation &operation) {
  if (operation.example != nullptr) return fmt::format(" {}", operation.example);
  std::string text;
  for (const Argument &argument : operation.arguments()) {
    if (argument.is_input() && !argument.optional) text += example_of(argument);
  }
  return text;
}

std::string example(const Operation &operation) {
  std::string text = "\nExample:\n";
  std::string_view before = operation.example_after == nullptr ? "" : operation.example_after;
  while (!before.empty()) {
    std::string_view command = before.substr(0, before.find('\n'));
    text += fmt::format("  oltctl {}\n", command);
    before.remove_prefix(std::min(command.size() + 1, before.size()));
  }
  return text + fmt::format("  oltctl {}{}\n", operation.name, example_arguments(operation));
}

}  // namespace

std::string list_text(std::string_view word) {
  require_listed(word);
  std::string text;
  for (const Family &family : catalog::families()) {
    std::string lines;
    for (const Operation &operation : family.operations) {
      if (!is_about(operation, word)) continue;
      lines += fmt::format("  {:<42}{}\n", operation.name, operation.summary);
    }
    if (lines.empty()) continue;
    text += fmt::format("{}{}\n{}", text.empty() ? "" : "\n", family.title, lines);
  }
  return text;
}

std::string help_of(const Operation &operation) {
  return fmt::format("{}\n  {}.\n", signature(operation), operation.summary) +
         section("Arguments", operation, &Argument::is_input, input_text) +
         section("Results", operation, &Argument::is_output, output_text) + rules_text(operation) +
         address_text(operation.address) + example(operation);
}

}  // namespace olt::cli
