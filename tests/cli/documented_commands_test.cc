// docs/oltctl.md lists the options and commands that oltctl has.
#include <gtest/gtest.h>

#include "cli/commands.h"
#include "cli/options.h"
#include "tests/support/page.h"

namespace olt::test {

namespace {

using Lines = std::vector<std::string>;

/// Each "`TEXT`" in the first cells of the table.
Lines first_cells(std::string_view heading) {
  Lines found;
  for (const Cells &row : table_in_page("oltctl.md", heading)) {
    for (const std::string &part : split(row.at(0), ", ")) {
      found.push_back(part.substr(1, part.size() - 2));
    }
  }
  return found;
}

void expect_same(const Lines &documented, const Lines &actual) {
  EXPECT_EQ(without(actual, documented), Lines()) << "not in docs/oltctl.md";
  EXPECT_EQ(without(documented, actual), Lines()) << "in docs/oltctl.md alone";
}

TEST(DocumentedOptions, AreThoseOfOltctl) {
  Lines options;
  for (const auto &[name, value] : cli::option_names()) {
    if (name != "-h") options.push_back(value.empty() ? name : name + " " + value);
  }
  expect_same(first_cells("| Option |"), options);
}

TEST(DocumentedCommands, AreThoseOfOltctl) {
  Lines forms;
  for (const cli::Command &command : cli::commands()) {
    for (const std::string &form : split(command.usage, "\n")) forms.push_back(form);
  }
  expect_same(first_cells("| Command |"), forms);
}

}  // namespace

}  // namespace olt::test
