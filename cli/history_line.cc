#include "cli/history_line.h"

#include <algorithm>
#include <vector>

#include "catalog/catalog.h"
#include "cli/assignment.h"
#include "cli/error.h"
#include "cli/manual.h"
#include "cli/words.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::Operation;

namespace {

bool is_command(const std::string &word) {
  std::span<const Command> all = commands();
  return std::any_of(all.begin(), all.end(),
                     [&word](const Command &command) { return command.name == word; });
}

bool may_hide_secret(const Argument &argument) {
  return std::any_of(argument.fields.begin(), argument.fields.end(),
                     [](const Field &field) { return field.secret; });
}

std::optional<std::string> operation_line(const Operation &operation,
                                          std::span<const std::string> words) {
  std::vector<std::string> line(words.begin(), words.end());
  std::span<const std::string> arguments = words.subspan(1);
  for (const Assignment &assignment : assign(operation, arguments)) {
    std::string &word = line[assignment.word + 1];
    if (assignment.is_secret(operation)) {
      word.resize(word.size() - assignment.value.size());
      word += '-';
    } else if (assignment.field == nullptr &&
               may_hide_secret(operation.arguments()[assignment.place])) {
      return std::nullopt;
    }
  }
  return join_words(line);
}

}  // namespace

std::optional<std::string> history_line(std::span<const std::string> words) {
  if (is_command(words[0])) return join_words(words);
  const Operation *operation = catalog::find(words[0]);
  if (operation == nullptr) return std::nullopt;
  try {
    return operation_line(*operation, words);
  } catch (const Error &) {
    return std::nullopt;
  }
}

}  // namespace olt::cli
