// Lines of scripts and of the shell: as words, as commands, as what the history keeps of them, and
// as what can come next.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "catalog/catalog.h"
#include "cli/box/control_client.h"
#include "cli/commands.h"
#include "cli/completion.h"
#include "cli/history_line.h"
#include "cli/input/assignment.h"
#include "cli/manual.h"
#include "cli/text/error.h"
#include "cli/text/words.h"
#include "fuzz/target.h"

namespace {

using olt::catalog::Operation;
using olt::cli::Error;
using olt::fuzz::Input;
using olt::fuzz::require;
using Words = std::vector<std::string>;

void require_usage(const Error &error) {
  olt::fuzz::require_line(error.what());
  require(error.status() == olt::cli::kWrongUsage, "a line that is refused is wrong usage",
          error.what());
}

template <typename Function>
void attempt(Function function) {
  try {
    function();
  } catch (const Error &error) {
    require_usage(error);
  }
}

bool is_masked(const std::string &line) {
  Words words = olt::cli::split_words(line);
  const Operation *operation = olt::catalog::find(words[0]);
  if (operation == nullptr) return true;
  Words arguments(words.begin() + 1, words.end());
  std::vector<olt::cli::Assignment> all = olt::cli::assign(*operation, arguments);
  return std::all_of(all.begin(), all.end(), [operation](const olt::cli::Assignment &one) {
    return !one.is_secret(*operation) || one.value == "-";
  });
}

void remember(const Words &words) {
  std::optional<std::string> line = olt::cli::history_line(words);
  if (!line) return;
  require(olt::cli::split_words(*line).size() == words.size(), "the history keeps every word",
          *line);
  require(is_masked(*line), "the history keeps no secrets", *line);
}

void carry_out(const Words &words) {
  attempt([&] { static_cast<void>(olt::cli::operation_named(words[0])); });
  attempt([&] { olt::fuzz::require_lines(olt::cli::help_text(words[0])); });
  attempt([&] { olt::fuzz::require_lines(olt::cli::list_text(words[0])); });
  if (words[0] == "fault") {
    attempt([&] {
      std::span<const std::string> fault = std::span(words).subspan(1);
      require(olt::cli::fault_add_request(fault).contains("fault"), "a fault");
    });
  }
}

void complete(Words words) {
  std::string prefix = words.back();
  words.pop_back();
  olt::cli::Completion completion = olt::cli::complete_word(olt::cli::commands(), words, prefix);
  require(prefix.starts_with(completion.before), "a path completes what is there", prefix);
  for (const std::string &word : completion.words) {
    require(word.starts_with(prefix), "a completion begins with what is there", word);
  }
}

void take(std::string_view line) {
  attempt([line] {
    Words words = olt::cli::split_words(line);
    std::string joined = olt::cli::join_words(words);
    require(olt::cli::split_words(joined) == words, "words that are joined split as they were",
            joined);
    if (words.empty()) return;
    remember(words);
    carry_out(words);
    complete(std::move(words));
  });
}

}  // namespace

// The input is a script. Lines have no zeros: editor and shell end them there.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  std::string_view text = Input(data, size).text();
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    take(line.substr(0, line.find('\0')));
  }
  return 0;
}
