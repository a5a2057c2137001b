#include "cli/watch_command.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "base/text.h"
#include "catalog/catalog.h"
#include "cli/commands.h"
#include "cli/history_line.h"
#include "cli/input/argument_parser.h"
#include "cli/text/error.h"
#include "cli/text/number_text.h"
#include "cli/watch/watch.h"

namespace olt::cli {

namespace {

constexpr std::string_view kEvery = "--every";
constexpr std::string_view kCount = "--count";
constexpr CommandOption kWatchOptions[] = {
    {kEvery, "SECONDS", "from the start of one round to that of the next; 2 when left out"},
    {kCount, "N", "ends after so many rounds"}};
constexpr const char *kNextOperation = "+";
constexpr uint32_t kLongestPause = 86'400;
constexpr size_t kDecimals = 3;

/// Seconds as "2" or "0.5".
std::optional<std::chrono::milliseconds> seconds_in(const std::string &text) {
  size_t point = std::min(text.find('.'), text.size());
  std::string decimals = text.substr(std::min(point + 1, text.size()));
  std::optional<uint32_t> whole = number_in(text.substr(0, point), kLongestPause);
  bool has_decimals = point < text.size();
  bool is_decimal = std::all_of(text.begin(), text.end(),
                                [](char c) { return c == '.' || (c >= '0' && c <= '9'); });
  if (!whole || !is_decimal || decimals.size() > kDecimals || has_decimals == decimals.empty()) {
    return std::nullopt;
  }
  decimals.resize(kDecimals, '0');
  std::chrono::milliseconds time =
      std::chrono::seconds(*whole) + std::chrono::milliseconds(std::stoul(decimals));
  if (time > std::chrono::seconds(kLongestPause)) return std::nullopt;
  return time;
}

void set_option(WatchPlan &plan, std::string_view option, const std::string &value) {
  if (option == kEvery) {
    std::optional<std::chrono::milliseconds> every = seconds_in(value);
    if (!every) {
      wrong_usage("watch: {}: '{}' given; expected seconds from 0 to {}, as 2 or 0.5", kEvery,
                  printable(value), kLongestPause);
    }
    plan.every = *every;
  } else {
    plan.rounds = number_in(value, UINT32_MAX);
    if (plan.rounds.value_or(0) == 0) {
      wrong_usage("watch: {}: '{}' given; expected a number from 1 to {}", kCount, printable(value),
                  UINT32_MAX);
    }
  }
}

void add_item(WatchPlan &plan, Session &session, const std::vector<std::string> &words) {
  if (words.empty()) wrong_usage("watch: no operation is given; expected one, or several with +");
  if (find_command(words[0]) != nullptr) {
    wrong_usage("watch: {} is a command; expected an operation", words[0]);
  }
  const catalog::Operation &operation = operation_named(words[0], session.layout());
  if (!operation.reports()) {
    wrong_usage("watch: {} has no result; expected an operation that reads", operation.name);
  }
  if (operation.always_changes()) {
    wrong_usage("watch: {} changes the box; expected an operation that reads", operation.name);
  }
  auto call = std::make_unique<Call>(operation);
  read_arguments(*call, std::span(words).subspan(1));
  std::optional<std::string> title = history_line(words, session.layout());
  plan.items.push_back({printable(title.value_or(operation.name)), std::move(call)});
}

}  // namespace

void run_watch(Session &session, std::span<const std::string> words) {
  if (session.format() == Format::kCsv) {
    wrong_usage("watch: it has no CSV form; expected --format text or json");
  }
  WatchPlan plan;
  auto set = [&plan](std::string_view name, const std::string &value) {
    set_option(plan, name, value);
  };
  std::vector<std::vector<std::string>> lines(1);
  for (const std::string &word : take_options("watch", kWatchOptions, words.subspan(1), set)) {
    if (word == kNextOperation) {
      lines.emplace_back();
    } else {
      lines.back().push_back(word);
    }
  }
  for (const std::vector<std::string> &line : lines) add_item(plan, session, line);
  session.run_watch(plan);
}

std::vector<std::string> words_of_watch(std::span<const std::string> words) {
  std::vector<std::string> names;
  if (words.size() > 1) return names;
  for (const catalog::Family &family : catalog::families()) {
    for (const catalog::Operation &operation : family.operations)
      names.emplace_back(operation.name);
  }
  return names;
}

std::string details_of_watch() {
  return "  Calls them every 2 seconds until Ctrl-C. At a terminal each round replaces the last "
         "one;\n"
         "  lines that changed begin with *, and counters are shown per second. Otherwise, and "
         "with\n"
         "  --json, it prints a JSON object a call. A + stands before each further operation.\n" +
         options_text(kWatchOptions) +
         "  Example: watch get_port_link_state 1 1 + get_port_link_state 1 2 --count 1\n";
}

std::span<const CommandOption> options_of_watch() {
  return kWatchOptions;
}

}  // namespace olt::cli
