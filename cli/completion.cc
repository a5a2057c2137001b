#include "cli/completion.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

#include "agent/oltsnmp_options.h"
#include "box/oltbox_options.h"
#include "catalog/catalog.h"
#include "cli/commands.h"
#include "cli/input/assignment.h"
#include "cli/layout/layouts.h"
#include "cli/options.h"
#include "cli/text/error.h"
#include "cli/text/words.h"
#include "replay/options.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Family;
using catalog::Field;
using catalog::Layout;
using catalog::Operation;

namespace {

using Words = std::vector<std::string>;

void add_values(Words &words, const std::string &before, const Field &field) {
  for (const catalog::ValueName &value : field.values) {
    words.push_back(fmt::format("{}{}", before, value.name));
  }
}

void add_named(Words &words, const Field &field) {
  std::string name = fmt::format("{}=", field.name);
  words.push_back(name);
  add_values(words, name, field);
}

/// The values of the argument that the next word without a name goes to.
void add_values_of_next(Words &words, const Operation &operation,
                        std::span<const std::string> before) {
  try {
    size_t place = next_place(operation, assign(operation, before));
    if (place < operation.argument_count) {
      add_values(words, "", operation.arguments()[place].whole());
    }
  } catch (const Error &) {
    // Words that are wrong have nothing after them.
  }
}

Words argument_words(const Operation &operation, std::span<const std::string> before) {
  Words words;
  for (const Argument &argument : operation.arguments()) {
    if (!argument.takes_value()) continue;
    add_named(words, argument.whole());
    for (const Field &field : argument.own_fields()) add_named(words, field);
  }
  add_values_of_next(words, operation, before);
  return words;
}

Words next_words(std::span<const Command> commands, std::span<const std::string> before,
                 const Layout &layout) {
  if (before.empty()) return first_words(commands);
  if (const Operation *operation = layout.find(before[0])) {
    return argument_words(*operation, before.subspan(1));
  }
  for (const Command &command : commands) {
    if (command.name == before[0] && command.next_words != nullptr) {
      return command.next_words(before);
    }
  }
  return {};
}

/// Leaves those that begin with the word; of named values the names alone until the word has one.
void select(Words &words, std::string_view word) {
  bool has_name = word.find('=') != std::string_view::npos;
  std::erase_if(words, [&](const std::string &candidate) {
    size_t equals = candidate.find('=');
    bool is_value = equals < candidate.size() - 1;
    return !candidate.starts_with(word) || (is_value && !has_name);
  });
  if (has_name) std::erase(words, word);
}

/// The value that the option takes, such as "DIR"; empty when it takes none.
std::string_view value_of(std::span<const OptionName> options, std::string_view name) {
  for (const OptionName &option : options) {
    if (option.name == name) return option.value;
  }
  return "";
}

Completion path_of(std::string_view value, std::string_view before) {
  Completion completion;
  completion.before = before;
  if (value == "DIR") completion.kind = Completion::Kind::kDirectories;
  if (value == "FILE" || value == "SOCKET") completion.kind = Completion::Kind::kFiles;
  return completion;
}

/// The words that are neither options nor values of them.
Words without_options(std::span<const OptionName> options, std::span<const std::string> words) {
  Words operands;
  for (size_t i = 0; i < words.size(); ++i) {
    bool is_option = words[i].size() > 1 && words[i].starts_with('-');
    if (!is_option) operands.push_back(words[i]);
    if (!value_of(options, words[i]).empty()) ++i;
  }
  return operands;
}

/// What an option or the value of one may become; nothing when the word is neither.
/// @param before the words before it
std::optional<Completion> complete_option(std::span<const OptionName> options,
                                          std::span<const std::string> before,
                                          std::string_view word) {
  bool is_value = false;
  for (const std::string &one : before) is_value = !is_value && !value_of(options, one).empty();
  if (is_value) return path_of(value_of(options, before.back()), "");
  if (!word.starts_with('-')) return std::nullopt;
  size_t equals = word.find('=');
  if (equals != std::string_view::npos) {
    return path_of(value_of(options, word.substr(0, equals)), word.substr(0, equals + 1));
  }
  Completion completion;
  for (const OptionName &option : options) {
    if (option.name.starts_with("--")) completion.words.push_back(option.name);
  }
  select(completion.words, word);
  return completion;
}

/// Those of the command that the words begin with.
std::vector<OptionName> own_options(std::span<const Command> commands,
                                    std::span<const std::string> words) {
  std::vector<OptionName> names;
  for (const Command &command : commands) {
    if (words.empty() || words[0] != command.name || command.options == nullptr) continue;
    for (const CommandOption &option : command.options())
      names.push_back({std::string(option.name), std::string(option.value)});
  }
  return names;
}

std::vector<OptionName> names_of(std::span<const serving::Option> options) {
  std::vector<OptionName> names;
  for (const serving::Option &option : options) {
    std::string_view all = option.name;
    names.push_back({std::string(all.substr(all.find("--"))), option.value});
  }
  return names;
}

/// Completes the command line of a program that takes options alone; oltreplay takes captures, too.
Completion complete_program(std::string_view program, std::span<const std::string> before,
                            std::string_view word) {
  bool is_replay = program == "oltreplay";
  std::span<const serving::Option> options = box::option::kAll;
  if (is_replay) options = replay::option::kAll;
  if (program == "oltsnmp") options = agent::option::kAll;
  std::optional<Completion> completion = complete_option(names_of(options), before, word);
  if (!completion && is_replay) completion = path_of("FILE", "");
  return completion.value_or(Completion());
}

/// The layout that the environment or the options name, the box's when it cannot be read.
std::shared_ptr<const Layout> layout_for(std::span<const std::string> words) {
  std::string name = layout_in_use("");
  for (size_t i = 0; i + 1 < words.size(); ++i) {
    if (words[i] == "--layout") name = words[i + 1];
  }
  try {
    return layout_named(name);
  } catch (const Error &) {
    return layout_named("box");
  }
}

/// What --help and list say of an operation or a command; empty for other words.
std::string summary_of(const std::string &word, const Layout &layout) {
  if (const Operation *operation = layout.find(word)) return operation->summary;
  const Command *command = find_command(word);
  return command == nullptr ? "" : command->summary;
}

std::string answer(const Completion &completion, const Layout &layout) {
  if (completion.kind == Completion::Kind::kFiles) {
    return fmt::format("files {}\n", completion.before);
  }
  if (completion.kind == Completion::Kind::kDirectories) {
    return fmt::format("directories {}\n", completion.before);
  }
  std::string text = "words\n";
  for (const std::string &word : completion.words) {
    std::string summary = summary_of(word, layout);
    text += summary.empty() ? word + '\n' : fmt::format("{}\t{}\n", word, summary);
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

Completion complete_word(std::span<const Command> commands, std::span<const std::string> before,
                         std::string_view word, const Layout &layout) {
  size_t value = word.find('=') == std::string_view::npos ? 0 : word.find('=') + 1;
  if (!before.empty() && word.substr(value).starts_with('@')) {
    return path_of("FILE", word.substr(0, value + 1));
  }
  std::vector<OptionName> options = own_options(commands, before);
  Words operands(before.begin(), before.end());
  if (!options.empty()) {
    if (auto completion = complete_option(options, before, word)) return *completion;
    operands = without_options(options, before);
  }
  Completion completion;
  completion.words = next_words(commands, operands, layout);
  if (completion.words == Words{kAnyFile}) return path_of("FILE", "");
  select(completion.words, word);
  return completion;
}

Words words_to_complete(std::string_view line) {
  size_t begin = line.find_last_of(" \t");
  begin = begin == std::string_view::npos ? 0 : begin + 1;
  Words words;
  try {
    words = split_words(line.substr(0, begin));
  } catch (const Error &) {
    return {};
  }
  words.emplace_back(line.substr(begin));
  return words;
}

std::string completion_answer(std::string_view line) {
  Words before = words_to_complete(line);
  if (before.size() < 2) return answer({}, Layout::box());
  std::string word = std::move(before.back());
  before.pop_back();
  std::string program = std::filesystem::path(before[0]).filename();
  before.erase(before.begin());
  if (program == "oltbox" || program == "oltreplay" || program == "oltsnmp")
    return answer(complete_program(program, before, word), Layout::box());
  std::shared_ptr<const Layout> layout = layout_for(before);
  std::vector<OptionName> options = option_names();
  for (OptionName &own : own_options(commands(), without_options(options, before))) {
    bool is_known = std::any_of(options.begin(), options.end(), [&own](const OptionName &option) {
      return option.name == own.name;
    });
    if (!is_known) options.push_back(std::move(own));
  }
  std::optional<Completion> completion = complete_option(options, before, word);
  if (!completion)
    completion = complete_word(commands(), without_options(options, before), word, *layout);
  return answer(completion.value_or(Completion()), *layout);
}

}  // namespace olt::cli
