#include "cli/history_line.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include "catalog/catalog.h"
#include "cli/commands.h"
#include "cli/input/assignment.h"
#include "cli/text/error.h"
#include "cli/text/words.h"

namespace olt::cli {

using catalog::Argument;
using catalog::Field;
using catalog::Operation;

namespace {

bool has_secret(const Argument &argument) {
  return argument.secret || std::any_of(argument.fields.begin(), argument.fields.end(),
                                        [](const Field &field) { return field.secret; });
}

bool has_secret(const Operation &operation) {
  return std::any_of(operation.arguments().begin(), operation.arguments().end(),
                     [](const Argument &argument) { return has_secret(argument); });
}

/// Whether the word gives a secret by name, as "password=x" and "user.user_password=x" do.
bool gives_secret(std::string_view word, const Operation &operation) {
  auto gives = [word](const char *name) {
    return word.find(fmt::format("{}=", name)) != std::string_view::npos;
  };
  for (const Argument &argument : operation.arguments()) {
    if (argument.secret && gives(argument.name)) return true;
    for (const Field &field : argument.fields) {
      if (field.secret && gives(field.name)) return true;
    }
  }
  return false;
}

/// Whether a word gives a secret, or words follow the name of an operation that takes one.
bool may_hold_secret(std::span<const std::string> words, const catalog::Layout &layout) {
  for (const catalog::Family &family : layout.families()) {
    for (const Operation &operation : family.operations) {
      if (!has_secret(operation)) continue;
      auto named = std::find(words.begin(), words.end(), operation.name);
      if (named != words.end() && named + 1 != words.end()) return true;
      if (std::any_of(words.begin(), words.end(), [&operation](const std::string &word) {
            return gives_secret(word, operation);
          })) {
        return true;
      }
    }
  }
  return false;
}

/// Whether a command about an operation names none that exists: what follows may be a secret for
/// the one that was meant.
bool misnames_operation(std::span<const std::string> words, const catalog::Layout &layout) {
  if ((words[0] != "help" && words[0] != "watch") || words.size() < 3) return false;
  return std::none_of(words.begin() + 1, words.end(), [&layout](const std::string &word) {
    return layout.find(word) != nullptr || find_command(word) != nullptr;
  });
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
    } else if (assignment.field == nullptr && has_secret(operation.arguments()[assignment.place])) {
      return std::nullopt;
    }
  }
  return join_words(line);
}

}  // namespace

std::optional<std::string> history_line(std::span<const std::string> words,
                                        const catalog::Layout &layout) {
  if (find_command(words[0]) != nullptr) {
    if (may_hold_secret(words, layout) || misnames_operation(words, layout)) return std::nullopt;
    return join_words(words);
  }
  const Operation *operation = layout.find(words[0]);
  if (operation == nullptr) return std::nullopt;
  try {
    return operation_line(*operation, words);
  } catch (const Error &) {
    return std::nullopt;
  }
}

std::string echoed_line(std::span<const std::string> words, const catalog::Layout &layout) {
  if (std::optional<std::string> line = history_line(words, layout)) return *line;
  return join_words(words.first(1)) + (words.size() > 1 ? " ..." : "");
}

}  // namespace olt::cli
