#include "cli/compare_command.h"

#include <fmt/format.h>

#include <filesystem>
#include <system_error>

#include "base/text.h"
#include "cli/command.h"
#include "cli/compare/compare.h"
#include "cli/show/selection.h"
#include "cli/text/error.h"
#include "cli/text/number_text.h"

namespace olt::cli {

namespace {

constexpr std::string_view kAll = "--all";
constexpr std::string_view kYes = "--yes";
constexpr std::string_view kIgnore = "--ignore";
constexpr std::string_view kFiles = "--files";
constexpr std::string_view kAtMost = "--count";
constexpr std::string_view kJunit = "--junit";
constexpr CommandOption kCompareOptions[] = {
    {kAll, "", "sends requests that may change the box, too"},
    {kYes, "", "does not ask before those that cannot be taken back"},
    {kIgnore, "PATTERN", "leaves out a field, FIELD or OPERATION.FIELD; may be repeated"},
    {kFiles, "DIR", "compares listings with those that OLT_CAPTURE_FILES kept in DIR"},
    {kAtMost, "N", "sends at most so many"},
    {kJunit, "FILE", "writes the result as JUnit XML, too"}};

void set_option(ComparePlan &plan, const catalog::Layout &layout, std::string_view option,
                const std::string &value) {
  if (option == kAll) {
    plan.all = true;
  } else if (option == kYes) {
    plan.asks = false;
  } else if (option == kIgnore) {
    plan.ignored.add(value, layout);
  } else if (option == kAtMost) {
    plan.count = number_in(value, UINT32_MAX);
    if (plan.count.value_or(0) == 0) {
      wrong_usage("compare: {}: '{}' given; expected a number from 1 to {}", kAtMost,
                  printable(value), UINT32_MAX);
    }
  } else if (option == kFiles) {
    std::error_code error;
    if (!std::filesystem::is_directory(value, error)) {
      wrong_usage("compare: {}: '{}' is no directory; expected that of OLT_CAPTURE_FILES", kFiles,
                  printable(value));
    }
    plan.files = value;
  } else {
    if (value.empty()) wrong_usage("compare: {}: no file is given; expected one", kJunit);
    plan.junit = value;
  }
}

}  // namespace

void run_compare(Session &session, std::span<const std::string> words) {
  if (session.format() == Format::kCsv)
    wrong_usage("compare: it has no CSV form; expected --format text or json");
  ComparePlan plan;
  auto set = [&](std::string_view name, const std::string &value) {
    set_option(plan, session.layout(), name, value);
  };
  std::vector<std::string> names = take_options("compare", kCompareOptions, words.subspan(1), set);
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
         "  sent only with --all. Filters are those of show.\n" +
         options_text(kCompareOptions) +
         "  Example: compare 1234.pcapng module=2 --ignore '*.seconds'\n";
}

std::span<const CommandOption> options_of_compare() {
  return kCompareOptions;
}

}  // namespace olt::cli
