#include "cli/text/words.h"

#include "cli/text/error.h"

namespace olt::cli {

namespace {

constexpr std::string_view kBlanks = " \t\r";

class Splitter {
 public:
  explicit Splitter(std::string_view line) : line_(line) {}

  std::vector<std::string> split() {
    while (skip_blanks()) words_.push_back(word());
    return std::move(words_);
  }

 private:
  bool skip_blanks() {
    at_ = line_.find_first_not_of(kBlanks, at_);
    return at_ != std::string_view::npos && line_[at_] != '#';
  }

  std::string word() {
    std::string word;
    while (at_ < line_.size() && kBlanks.find(line_[at_]) == std::string_view::npos) {
      char character = line_[at_++];
      if (character == '\'' || character == '"') {
        word += quoted(character);
      } else if (character == '\\') {
        word += next("a character after the backslash");
      } else {
        word += character;
      }
    }
    return word;
  }

  std::string quoted(char quote) {
    std::string text;
    std::string missing = fmt::format("a closing {}", quote);
    for (char character = next(missing); character != quote; character = next(missing)) {
      bool escapes = quote == '"' && character == '\\' && at_ < line_.size() &&
                     (line_[at_] == '"' || line_[at_] == '\\');
      text += escapes ? next(missing) : character;
    }
    return text;
  }

  char next(std::string_view missing) {
    if (at_ == line_.size()) wrong_usage("the line ends too early; expected {}", missing);
    return line_[at_++];
  }

  std::string_view line_;
  size_t at_ = 0;
  std::vector<std::string> words_;
};

std::string quote(const std::string &word) {
  bool is_simple =
      !word.empty() && word[0] != '#' && word.find_first_of(" \t\r'\"\\}") == std::string::npos;
  if (is_simple) return word;
  std::string quoted = "'";
  for (char character : word) {
    if (character == '\'') {
      quoted += "'\\''";
    } else {
      quoted += character;
    }
  }
  return quoted + '\'';
}

}  // namespace

std::vector<std::string> split_words(std::string_view line) {
  return Splitter(line).split();
}

std::vector<std::string> command_words(std::string_view line) {
  std::vector<std::string> words = split_words(line);
  if (words.size() > 1 && words[0] == "oltctl") words.erase(words.begin());
  return words;
}

std::string join_words(std::span<const std::string> words) {
  std::string line;
  for (const std::string &word : words) {
    if (!line.empty()) line += ' ';
    line += quote(word);
  }
  return line;
}

}  // namespace olt::cli
