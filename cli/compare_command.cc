#include "cli/compare_command.h"

#include <fmt/format.h>

#include "base/text.h"
#include "cli/command.h"
#include "cli/compare/compare.h"
#include "cli/show/selection.h"
#include "cli/text/error.h"
#include "cli/text/number_text.h"

namespace olt::cli {

namespace {

constexpr const char *kIgnore = "--ignore";
constexpr const char *kAtMost = "--count";
constexpr const char *kJunit = "--junit";

void set_option(ComparePlan &plan, const catalog::Layout &layout, const std::string &option,
                const std::string &value) {
  if (option == kIgnore) {
    plan.ignored.add(value, layout);
  } else if (option == kAtMost) {
    plan.count = number_in(value, UINT32_MAX);
    if (plan.count.value_or(0) == 0) {
      wrong_usage("compare: {}: '{}' given; expected a number from 1 to {}", kAtMost,
                  printable(value), UINT32_MAX);
    }
  } else if (option == kJunit) {
    if (value.empty()) wrong_usage("compare: {}: no file is given; expected one", kJunit);
    plan.junit = value;
  } else {
    wrong_usage("compare: there is no option '{}'; expected {}, {} or {}", printable(option),
                kIgnore, kAtMost, kJunit);
  }
}

}  // namespace

void run_compare(Session &session, std::span<const std::string> words) {
  if (session.format() == Format::kCsv)
    wrong_usage("compare: it has no CSV form; expected --format text or json");
  ComparePlan plan;
  std::vector<std::string> names;
  for (size_t i = 1; i < words.size(); ++i) {
    const std::string &word = words[i];
    size_t equals = word.find('=');
    if (!word.starts_with("--")) {
      names.push_back(word);
    } else if (word == "--all") {
      plan.all = true;
    } else if (word == "--yes") {
      plan.asks = false;
    } else if (equals != std::string::npos) {
      set_option(plan, session.layout(), word.substr(0, equals), word.substr(equals + 1));
    } else {
      set_option(plan, session.layout(), word, i + 1 < words.size() ? words[i + 1] : "");
      ++i;
    }
  }
  if (names.empty()) wrong_usage("compare: no file is given; expected a capture");
  plan.path = names[0];
  plan.selected = selected_exchanges("compare", std::span(names).subspan(1), session.layout());
  session.run_compare(std::move(plan));
}

std::vector<std::string> words_of_compare(std::span<const std::string> words) {
  return words.size() == 1 ? std::vector<std::string>{kAnyFile} : names_of_filters();
}

std::string details_of_compare() {
  return "  Sends the requests of a capture to the box in use, and prints where status and reply\n"
         "  differ from what was recorded, then a line for each operation. Exits with status 1 "
         "when\n"
         "  something differs, with 2 when it cannot compare. Requests that may change the box "
         "are\n"
         "  sent only with --all. Filters are those of show.\n"
         "    --ignore PATTERN  leaves out a field, FIELD or OPERATION.FIELD; may be repeated\n"
         "    --count N         sends at most so many\n"
         "    --junit FILE      writes the result as JUnit XML, too\n"
         "  Example: compare 1234.pcapng module=2 --ignore '*.seconds'\n";
}

}  // namespace olt::cli
