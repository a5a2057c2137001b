#include "cli/completion.h"

#include <fmt/format.h>

#include "catalog/catalog.h"
#include "cli/expectations.h"
#include "cli/manual.h"
#include "cli/readers.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Family;
using catalog::Field;
using catalog::Operation;

namespace {

using Words = std::vector<std::string>;

Words operation_names() {
  Words names;
  for (const Family &family : catalog::families()) {
    for (const Operation &operation : family.operations) names.emplace_back(operation.name);
  }
  return names;
}

Words first_words() {
  Words words = operation_names();
  for (const Command &command : commands()) words.emplace_back(command.name);
  return words;
}

Words argument_names(const Operation &operation) {
  Words names;
  for (const Argument &argument : operation.arguments()) {
    if (!takes_value(argument)) continue;
    names.push_back(fmt::format("{}=", argument.name));
    for (const Field &field : argument.own_fields())
      names.push_back(fmt::format("{}=", field.name));
  }
  return names;
}

/// The words of a command after its name.
Words command_words(std::span<const std::string> before) {
  const std::string &command = before[0];
  if (command == "help") return before.size() == 1 ? first_words() : Words{};
  if (command == "walk") return before.size() == 1 ? reader_names() : Words{};
  if (command == "completion") return before.size() == 1 ? Words{"bash"} : Words{};
  if (command != "fault") return {};
  if (before.size() == 1) return {"add", "list", "clear"};
  if (before[1] != "add") return {};
  return {"type=", "module=", "status=", "delay_ms=", "action=", "from=", "count="};
}

Words next_words(std::span<const std::string> before) {
  if (before.empty()) return first_words();
  if (const Operation *operation = catalog::find(before[0])) return argument_names(*operation);
  return command_words(before);
}

std::string branch(std::string_view pattern, const Words &words) {
  return fmt::format("    {}) words='{}' ;;\n", pattern, fmt::join(words, " "));
}

/// One line per path of words, so that bash finds the same as candidates() does.
std::string branches() {
  std::string text = branch("''", first_words());
  for (const Family &family : catalog::families()) {
    for (const Operation &operation : family.operations) {
      Words names = argument_names(operation);
      if (!names.empty()) text += branch(fmt::format("{0}|{0}' '*", operation.name), names);
    }
  }
  text += branch("help", first_words());
  text += branch("walk", command_words(Words{"walk"}));
  text += branch("completion", command_words(Words{"completion"}));
  text += branch("fault", command_words(Words{"fault"}));
  text += branch("'fault add'*", command_words(Words{"fault", "add"}));
  return text;
}

constexpr const char *kBashHead =
    R"(# Completion of oltctl for bash, printed by: oltctl completion bash
_oltctl() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local line='' words='' i
  case $previous in
    --box) mapfile -t COMPREPLY < <(compgen -d -- "$current"); return ;;
    --topology | -f | --file) mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
    =) return ;;
  esac
  if [[ $current == -* ]]; then
    words='--box --fresh --topology --file --json --trace --show-secrets --real-flash --help --version'
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    return
  fi
  for ((i = 1; i < COMP_CWORD; i++)); do
    case ${COMP_WORDS[i]} in
      --box | --topology | -f | --file) ((i++)) ;;
      -*) ;;
      *) line+="${line:+ }${COMP_WORDS[i]}" ;;
    esac
  done
  case $line in
)";

constexpr const char *kBashTail = R"(  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
  if [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]]; then compopt -o nospace; fi
}
complete -F _oltctl oltctl
)";

}  // namespace

Words candidates(std::span<const std::string> before, std::string_view prefix) {
  Words words = next_words(before);
  std::erase_if(words, [prefix](const std::string &word) { return !word.starts_with(prefix); });
  return words;
}

std::string bash_completion() {
  return kBashHead + branches() + kBashTail;
}

}  // namespace olt::cli
