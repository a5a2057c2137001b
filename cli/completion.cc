#include "cli/completion.h"

#include <fmt/format.h>

#include "catalog/catalog.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Family;
using catalog::Field;
using catalog::Operation;

namespace {

using Words = std::vector<std::string>;

Words argument_names(const Operation &operation) {
  Words names;
  for (const Argument &argument : operation.arguments()) {
    if (!argument.takes_value()) continue;
    names.push_back(fmt::format("{}=", argument.name));
    for (const Field &field : argument.own_fields())
      names.push_back(fmt::format("{}=", field.name));
  }
  return names;
}

Words words_after(const Command &command, std::span<const std::string> words) {
  return command.next_words == nullptr ? Words{} : command.next_words(words);
}

Words next_words(std::span<const Command> commands, std::span<const std::string> before,
                 const catalog::Layout &layout) {
  if (before.empty()) return first_words(commands);
  if (const Operation *operation = layout.find(before[0])) return argument_names(*operation);
  for (const Command &command : commands) {
    if (command.name == before[0]) return words_after(command, before);
  }
  return {};
}

std::string branch(std::string_view pattern, const Words &words) {
  return fmt::format("    {}) words='{}' ;;\n", pattern, fmt::join(words, " "));
}

/// A command's branches: after its name, and after each word that others follow.
std::string branches(const Command &command) {
  Words words = words_after(command, Words{command.name});
  if (words.empty()) return "";
  std::string text = branch(command.name, words);
  for (const std::string &word : words) {
    Words more = words_after(command, Words{command.name, word});
    if (!more.empty()) text += branch(fmt::format("'{} {}'*", command.name, word), more);
  }
  return text;
}

std::string branches(std::span<const Command> commands, const catalog::Layout &layout) {
  std::string text = branch("''", first_words(commands));
  for (const Family &family : layout.families()) {
    for (const Operation &operation : family.operations) {
      Words names = argument_names(operation);
      if (!names.empty()) text += branch(fmt::format("{0}|{0}' '*", operation.name), names);
    }
  }
  for (const Command &command : commands) text += branches(command);
  return text;
}

constexpr const char *kBashHead =
    R"(# Completion of oltctl for bash, printed by: oltctl completion bash
_oltctl() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local line='' words='' i
  local options='@options@'
  case $previous in
    @directories@) mapfile -t COMPREPLY < <(compgen -d -- "$current"); return ;;
    @files@) mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
    =) return ;;
  esac
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
    return
  fi
  for ((i = 1; i < COMP_CWORD; i++)); do
    case ${COMP_WORDS[i]} in
      @directories@ | @files@) ((i++)) ;;
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

/// The options that take such a value, as a pattern of bash.
std::string pattern_of(std::span<const OptionName> options, std::string_view value) {
  Words names;
  for (const OptionName &option : options) {
    if (option.value == value) names.push_back(option.name);
  }
  return fmt::format("{}", fmt::join(names, " | "));
}

std::string long_names(std::span<const OptionName> options) {
  Words names;
  for (const OptionName &option : options) {
    if (option.name.starts_with("--")) names.push_back(option.name);
  }
  return fmt::format("{}", fmt::join(names, " "));
}

std::string replaced(std::string text, std::string_view what, const std::string &by) {
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at)) {
    text.replace(at, what.size(), by);
  }
  return text;
}

}  // namespace

Words first_words(std::span<const Command> commands) {
  Words words;
  for (const Family &family : catalog::families()) {
    for (const Operation &operation : family.operations) words.emplace_back(operation.name);
  }
  for (const Command &command : commands) words.emplace_back(command.name);
  return words;
}

Words candidates(std::span<const Command> commands, std::span<const std::string> before,
                 std::string_view prefix, const catalog::Layout &layout) {
  Words words = next_words(commands, before, layout);
  std::erase_if(words, [prefix](const std::string &word) { return !word.starts_with(prefix); });
  return words;
}

std::string bash_completion(std::span<const Command> commands, std::span<const OptionName> options,
                            const catalog::Layout &layout) {
  std::string head = replaced(kBashHead, "@options@", long_names(options));
  head = replaced(head, "@directories@", pattern_of(options, "DIR"));
  head = replaced(head, "@files@", pattern_of(options, "FILE"));
  return head + branches(commands, layout) + kBashTail;
}

}  // namespace olt::cli
