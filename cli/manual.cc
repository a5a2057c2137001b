#include "cli/manual.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <utility>
#include <vector>

#include "base/text.h"
#include "catalog/catalog.h"
#include "cli/error.h"
#include "cli/expectations.h"
#include "cli/readers.h"

namespace olt::cli {

using catalog::Address;
using catalog::Argument;
using catalog::Family;
using catalog::Field;
using catalog::FieldKind;
using catalog::Form;
using catalog::Kind;
using catalog::Operation;

namespace {

constexpr Command kCommands[] = {
    {"list", "list [WORD]", "Lists the operations, or those about WORD"},
    {"help", "help [OPERATION]", "Says what an operation takes, with an example"},
    {"shell", "shell", "Takes operations from the terminal, one after the other"},
    {"fault",
     "fault add type=TYPE|OPERATION [module=N] [status=N] [delay_ms=N]\n"
     "          [action=status|silence|drop] [from=N] [count=N]\n"
     "fault list\n"
     "fault clear [ID]",
     "Has the box refuse a request, answer late or not at all: from the from-th such request on\n"
     "  (1 when left out), count times (0 when left out: always). 'fault clear' alone ends all.\n"
     "  Example: fault add type=get_olt_mac status=5 count=1"},
    {"walk", "walk [READER]",
     "Prints all rows of the table of which READER reads one; names the readers without one.\n"
     "  Example: walk process_onu_portdownrate"},
    {"counters", "counters", "Shows what has happened in the box"},
    {"completion", "completion bash",
     "Prints the completion for bash: eval \"$(oltctl completion bash)\""},
};

constexpr size_t kMostSuggestions = 3;
constexpr uint32_t kWord = 4;

std::string lower(std::string_view text) {
  std::string lowered(text);
  for (char &character : lowered) {
    character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  return lowered;
}

bool has(std::string_view text, std::string_view word) {
  return lower(text).find(lower(word)) != std::string::npos;
}

/// Letters to insert, drop or change to get from one word to the other.
size_t distance(std::string_view from, std::string_view to) {
  std::vector<size_t> row(to.size() + 1);
  for (size_t j = 0; j <= to.size(); ++j) row[j] = j;
  for (size_t i = 1; i <= from.size(); ++i) {
    size_t diagonal = std::exchange(row[0], i);
    for (size_t j = 1; j <= to.size(); ++j) {
      size_t changed = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, changed});
    }
  }
  return row[to.size()];
}

/// The nearest names of operations and commands, nearest first.
std::vector<std::string> near_names(const std::string &name) {
  std::vector<std::pair<size_t, std::string>> near;
  auto consider = [&near, &name](const char *candidate) {
    size_t changes = distance(lower(name), lower(candidate));
    if (changes <= std::max<size_t>(2, name.size() / 4)) near.emplace_back(changes, candidate);
  };
  for (const Family &family : catalog::families()) {
    for (const Operation &operation : family.operations) consider(operation.name);
  }
  for (const Command &command : kCommands) consider(command.name);
  std::sort(near.begin(), near.end());
  std::vector<std::string> names;
  for (auto &[changes, candidate] : near) {
    if (names.size() < kMostSuggestions) names.push_back(std::move(candidate));
  }
  return names;
}

std::string signature(const Operation &operation) {
  std::string text = operation.name;
  for (const Argument &argument : operation.arguments()) {
    if (!argument.is_input()) continue;
    text += may_be_left_out(argument) ? fmt::format(" [{}]", argument.name)
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
  std::string text = fmt::format("  {:<14}  {}", argument.name, expected(argument));
  if (argument.secret) text += "; '-' reads it without echo";
  if (may_be_left_out(argument)) {
    text += argument.kind == Kind::kWord ? "; 0 when left out" : "; zeros when left out";
  }
  text += '\n';
  size_t column = field_column(argument.own_fields());
  for (const Field &field : argument.own_fields()) {
    text += fmt::format("    {:<{}}  {}{}\n", field.name, column, expected(field),
                        field.secret ? "; '-' reads it without echo" : "");
  }
  return text;
}

std::string record_text(const Argument &argument) {
  if (!argument.fields.empty()) return "the record's fields";
  if (argument.form == Form::kWords) return fmt::format("{} numbers", argument.size / kWord);
  return fmt::format("{} bytes", argument.size);
}

std::string output_text(const Argument &argument) {
  std::string kind;
  switch (argument.kind) {
    case Kind::kWord:
      kind = "a number";
      break;
    case Kind::kName:
      kind = "the name of a listing, followed by its text";
      break;
    case Kind::kBlock:
    case Kind::kHeadedBlock:
    case Kind::kReplyBlock:
      kind = "the answer's bytes";
      break;
    case Kind::kBuffer:
      kind = fmt::format("the bytes; {}=@FILE writes them to a file", argument.name);
      break;
    case Kind::kRecord:
      kind = record_text(argument);
      break;
    case Kind::kText:
      kind = "text";
      break;
    case Kind::kStream:
    case Kind::kVlans:
    case Kind::kIds:
    case Kind::kEntries:
      break;
  }
  return fmt::format("  {:<14}  {}\n", argument.name, kind);
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

std::string example_record(const Argument &argument) {
  switch (argument.form) {
    case Form::kOnt:
      return "1/2/3";
    case Form::kMac:
      return "02:00:00:00:00:01";
    case Form::kWords:
      return "10,20";
    case Form::kBytes:
      break;
  }
  return argument.size > kWord ? "0:01,4:01" : "0:01";
}

const char *example_text(std::string_view name) {
  return name == "description" ? "uplink" : "operator";
}

std::string example_value(const Argument &argument) {
  if (argument.secret) return fmt::format(" {}=-", argument.name);
  switch (argument.kind) {
    case Kind::kText:
      return fmt::format(" {}={}", argument.name, example_text(argument.name));
    case Kind::kWord:
      return fmt::format(" {}=1", argument.name);
    case Kind::kRecord:
      return fmt::format(" {}={}", argument.name, example_record(argument));
    case Kind::kVlans:
    case Kind::kIds:
      return fmt::format(" {}={}", argument.name,
                         described_bytes(argument) == 0 ? "10,20-25" : "10:uplink,20-25:users");
    case Kind::kEntries:
      return fmt::format(" {}='mac=02:00:00:00:00:01;loid=site-17 password=-'", argument.name);
    default:
      return fmt::format(" {0}=@{0}.bin", argument.name);
  }
}

/// Whether it takes the second field, too, to name what the record is about.
bool is_named_by_two(std::span<const Field> fields) {
  std::string_view second = fields.size() > 1 ? fields[1].name : "";
  return second == "port" || second == "number";
}

/// The first text says more than the numbers before it.
std::string example_field(std::span<const Field> fields) {
  for (const Field &field : fields) {
    if (field.kind == FieldKind::kText) return fmt::format(" {}=operator", field.name);
  }
  while (std::string_view(fields.front().name).starts_with("reserved")) fields = fields.subspan(1);
  if (fields.front().kind == FieldKind::kWords) return fmt::format(" {}=1,1", fields.front().name);
  std::string text = fmt::format(" {}=1", fields.front().name);
  if (is_named_by_two(fields)) text += fmt::format(" {}=1", fields[1].name);
  return text;
}

std::string example(const Operation &operation) {
  std::string text = "\nExample:\n  oltctl ";
  text += operation.name;
  for (const Argument &argument : operation.arguments()) {
    if (!argument.is_input() || argument.optional) continue;
    bool is_short = argument.form == Form::kOnt || argument.form == Form::kMac;
    bool by_field = !argument.own_fields().empty() && !is_short;
    text += by_field ? example_field(argument.fields) : example_value(argument);
  }
  return text + '\n';
}

std::string help_of(const Command &command) {
  return fmt::format("{}\n  {}\n", command.usage, command.summary);
}

std::string overview() {
  std::string text =
      "OPERATION [ARGUMENT...]\n"
      "  Calls an operation; 'list' names them. Arguments are given in order or as NAME=VALUE.\n"
      "  Example: get_vlan_interface_file_byinteface slot=1 port=1\n";
  for (const Command &command : kCommands) text += help_of(command);
  return text;
}

bool is_about(const Operation &operation, std::string_view word) {
  return has(operation.name, word) || has(operation.summary, word);
}

bool is_listed(std::string_view word) {
  for (const Family &family : catalog::families()) {
    for (const Operation &operation : family.operations) {
      if (is_about(operation, word)) return true;
    }
  }
  return false;
}

std::string help_of(const Operation &operation) {
  return fmt::format("{}\n  {}.\n", signature(operation), operation.summary) +
         section("Arguments", operation, &Argument::is_input, input_text) +
         section("Results", operation, &Argument::is_output, output_text) +
         address_text(operation.address) + example(operation);
}

}  // namespace

std::span<const Command> commands() {
  return kCommands;
}

std::string list_text(std::string_view word) {
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
  if (text.empty()) {
    wrong_usage(
        "list: no operation has '{}' in its name or summary; expected another word, or none"
        " for all",
        printable(word));
  }
  return text;
}

std::string help_text(const std::string &name) {
  if (name.empty()) return overview();
  for (const Command &command : kCommands) {
    if (command.name != name) continue;
    return help_of(command) + (name == "walk" ? readers_text() : "");
  }
  return help_of(operation_named(name));
}

const Operation &operation_named(const std::string &name) {
  if (const Operation *operation = catalog::find(name)) return *operation;
  std::vector<std::string> names = near_names(name);
  if (names.empty()) {
    wrong_usage("oltctl: there is no operation '{}'; 'oltctl list{}' shows {}", printable(name),
                is_listed(name) ? " " + printable(name) : "",
                is_listed(name) ? "those about it" : "all of them");
  }
  wrong_usage("oltctl: there is no operation '{}'; did you mean {}?", printable(name),
              fmt::join(names, " or "));
}

}  // namespace olt::cli
