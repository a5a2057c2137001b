#include "cli/text/command_options.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/text.h"
#include "cli/text/error.h"

namespace olt::cli {

namespace {

std::string names_in_order(std::span<const CommandOption> options) {
  std::string names;
  for (size_t i = 0; i < options.size(); ++i) {
    if (i > 0) names += i + 1 == options.size() ? " or " : ", ";
    names += options[i].name;
  }
  return names;
}

}  // namespace

std::vector<std::string> take_options(
    std::string_view command, std::span<const CommandOption> options,
    std::span<const std::string> words,
    const std::function<void(std::string_view name, const std::string &value)> &take) {
  std::vector<std::string> others;
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string &word = words[i];
    if (!word.starts_with("--")) {
      others.push_back(word);
      continue;
    }
    size_t equals = std::min(word.find('='), word.size());
    std::string_view name = std::string_view(word).substr(0, equals);
    bool has_value = equals < word.size();
    auto option = std::find_if(options.begin(), options.end(),
                               [name](const CommandOption &one) { return one.name == name; });
    if (option == options.end() || (has_value && option->value.empty())) {
      wrong_usage("{}: there is no option '{}'; expected {}", command, printable(word),
                  names_in_order(options));
    }
    bool is_next = !has_value && !option->value.empty() && i + 1 < words.size();
    if (is_next) ++i;
    take(option->name, is_next ? words[i] : has_value ? word.substr(equals + 1) : "");
  }
  return others;
}

std::string options_text(std::span<const CommandOption> options) {
  size_t width = 0;
  for (const CommandOption &option : options)
    width = std::max(width, option.name.size() + option.value.size() + 1);
  std::string text;
  for (const CommandOption &option : options) {
    text += fmt::format("    {:<{}}  {}\n", fmt::format("{} {}", option.name, option.value), width,
                        option.summary);
  }
  return text;
}

}  // namespace olt::cli
